#pragma once

#include <map>
#include <string>
#include <vector>

#include "xml_element.h"

namespace kwa {

// Every text that the wizard shows in one language, by name: those of dpinst.xml under their elements' names and
// exactly as they stand there, the stand-in's own under the names that wizard_texts.cpp gives them. "eula" is the
// licence itself; without it there is no licence page.
using WizardTexts = std::map<std::wstring, std::wstring>;

// The stand-in's texts, in German for every kind of German, in English for all other languages.
WizardTexts OwnTexts(unsigned long language);

// The names of the root's flags: its elements that hold nothing.
std::vector<std::wstring> ReadFlags(const XmlElement& root);

// The texts for a language. One that is not listed gets the stand-in's own if enableNotListedLanguages stands in the
// root or no language is listed at all; otherwise this throws std::runtime_error, its text in UTF-8, as it does for a
// language whose code is no number or stands twice, and for a licence file that cannot be read or is not UTF-8.
WizardTexts ChooseTexts(const XmlElement& root, const std::wstring& folder, unsigned long language);

}  // namespace kwa
