#include "wizard_texts.h"

#include <windows.h>

#include <stdexcept>

#include "platform.h"

namespace kwa {
namespace {

struct Text {
  const wchar_t* name;
  const wchar_t* english;
  const wchar_t* german;
};

// The texts that dpinst.xml can set, and the stand-in's own defaults: DPInst's texts are not ours to copy.
const Text kConfigurableTexts[] = {
    {L"dpinstTitle", L"Driver Installation", L"Treiberinstallation"},
    {L"welcomeTitle", L"Welcome to the driver installation", L"Willkommen bei der Treiberinstallation"},
    {L"welcomeIntro", L"This wizard installs drivers.", L"Dieser Assistent installiert Treiber."},
    {L"eulaHeaderTitle", L"License Agreement", L"Lizenzvertrag"},
    {L"eulaYesButton", L"I &accept the agreement", L"Ich &nehme den Vertrag an"},
    {L"eulaNoButton", L"I &do not accept the agreement", L"Ich &lehne den Vertrag ab"},
    {L"watermarkPath", L"", L""},
};

const Text kFixedTexts[] = {
    {L"back", L"< &Back", L"< &Zurück"},
    {L"next", L"&Next >", L"&Weiter >"},
    {L"finish", L"Finish", L"Fertig stellen"},
    {L"cancel", L"Cancel", L"Abbrechen"},
    {L"welcomeHint", L"To continue, click Next.", L"Klicken Sie auf Weiter, um fortzufahren."},
    {L"eulaHint", L"You must accept the agreement to continue.", L"Nur wenn Sie zustimmen, geht es weiter."},
    {L"progressTitle", L"Installing the Drivers", L"Die Treiber werden installiert"},
    {L"progressHint", L"Please wait.", L"Bitte warten Sie."},
    {L"standIn", L"This is a stand-in for DPInst: nothing is installed.",
     L"Dies ist ein Platzhalter für DPInst: Es wird nichts installiert."},
    {L"finishTitle", L"The wizard has finished", L"Der Assistent ist fertig"},
    {L"finishIntro", L"DPInst would now have installed:", L"DPInst hätte jetzt installiert:"},
    {L"finishHint", L"To close the wizard, click Finish.",
     L"Klicken Sie auf Fertig stellen, um den Assistenten zu schließen."},
};

std::wstring ReadLicence(const std::wstring& folder, const XmlElement& eula) {
  const auto path = eula.attributes.find(L"path");
  const std::wstring name = path == eula.attributes.end() ? L"eula without a path" : path->second;
  const auto bytes = ReadWholeFile(folder + name);
  const std::wstring text = FromUtf8(bytes.value_or(""));
  if (text.empty()) {
    throw std::runtime_error(ToUtf8(name) + (bytes ? ": holds no UTF-8 text" : ": cannot be read"));
  }
  return text.substr(text[0] == L'\xFEFF' ? 1 : 0);
}

}  // namespace

WizardTexts OwnTexts(unsigned long language) {
  const bool german = PRIMARYLANGID(language) == LANG_GERMAN;
  WizardTexts texts;
  for (const Text& text : kConfigurableTexts) {
    texts[text.name] = german ? text.german : text.english;
  }
  for (const Text& text : kFixedTexts) {
    texts[text.name] = german ? text.german : text.english;
  }
  return texts;
}

std::vector<std::wstring> ReadFlags(const XmlElement& root) {
  std::vector<std::wstring> flags;
  for (const XmlElement& child : root.children) {
    if (child.text.empty() && child.attributes.empty() && child.children.empty()) {
      flags.push_back(child.name);
    }
  }
  return flags;
}

WizardTexts ChooseTexts(const XmlElement& root, const std::wstring& folder, unsigned long language) {
  std::map<unsigned long, const XmlElement*> listed;
  for (const XmlElement& child : root.children) {
    if (child.name == L"language") {
      const auto code = child.attributes.find(L"code");
      const auto number = code == child.attributes.end() ? std::nullopt : ParseNumber(code->second);
      if (!number || !listed.emplace(*number, &child).second) {
        throw std::runtime_error("dpinst.xml: the code of a language is not a number or occurs twice");
      }
    }
  }
  const auto own = listed.find(language);
  if (own == listed.end() && !listed.empty() && root.Child(L"enableNotListedLanguages") == nullptr) {
    throw std::runtime_error("dpinst.xml: does not list the user's language " + std::to_string(language));
  }
  const auto find = [&](const wchar_t* name) {
    const XmlElement* const child = own == listed.end() ? nullptr : own->second->Child(name);
    return child == nullptr ? root.Child(name) : child;  // the root may set it for all languages
  };
  WizardTexts texts = OwnTexts(language);
  for (const Text& text : kConfigurableTexts) {
    if (const XmlElement* const element = find(text.name)) {
      texts[text.name] = element->text;
    }
  }
  if (const XmlElement* const eula = find(L"eula")) {
    texts[L"eula"] = ReadLicence(folder, *eula);
  }
  return texts;
}

}  // namespace kwa
