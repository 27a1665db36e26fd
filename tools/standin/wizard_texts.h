#pragma once

#include <map>
#include <string>
#include <vector>

#include "xml_element.h"

namespace kwa {

// Every text that the wizard shows in one language, by name. The texts of dpinst.xml are unchanged and have the names
// of their elements; wizard_texts.cpp names the other texts. "eula" is the licence itself; without it there is no
// licence page.
using WizardTexts = std::map<std::wstring, std::wstring>;

// The stand-in's own texts: German for every variant of German, English for all other languages.
WizardTexts OwnTexts(unsigned long language);

// The names of the flags, which are the empty elements of the root.
std::vector<std::wstring> ReadFlags(const XmlElement& root);

// The texts for a language. A language that is not listed gets the stand-in's own texts, if the root has
// enableNotListedLanguages or lists no language. Throws std::runtime_error with a text in UTF-8 for any other language
// that is not listed, for a language code that is not a number or occurs twice, and for a licence file that cannot be
// read or is not UTF-8.
WizardTexts ChooseTexts(const XmlElement& root, const std::wstring& folder, unsigned long language);

}  // namespace kwa
