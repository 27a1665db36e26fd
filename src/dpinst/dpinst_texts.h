#pragma once

#include <cstdint>

namespace kwa {

// The wizard's texts in one language. Each is a whole line of dpinst.xml or the printf format of one, in 7-bit text. A
// blank before a closing tag belongs to the text.
struct DpinstTexts {
  const char* welcomeTitle;      // format: the package's display name
  const char* welcomeIntroHead;  // format: kUmlautA, if the text has this letter; does not close the element
  const char* eulaHeaderTitle;
  const char* eulaYesButton;
  const char* eulaNoButton;
  const char* eula;
};

extern const DpinstTexts kEnglishTexts;
extern const DpinstTexts kGermanTexts;

// The letter a with umlaut in UTF-8, which is the default encoding of XML.
constexpr char kUmlautA[] = "\xC3\xA4";

// The only language with kGermanTexts; all others have kEnglishTexts.
constexpr std::uint32_t kGermanLanguage = 0x0407;

// Windows language identifiers, in the order of their elements in dpinst.xml.
constexpr std::uint32_t DpinstLanguages[] = {
    0x0401,           // Arabic (Saudi Arabia)
    0x0804,           // Chinese (Simplified, PRC)
    0x0404,           // Chinese (Traditional, Taiwan)
    0x0405,           // Czech
    0x0406,           // Danish
    kGermanLanguage,  // German (Germany)
    0x0408,           // Greek
    0x0409,           // English (United States)
    0x0c0a,           // Spanish (Spain, modern sort)
    0x040b,           // Finnish
    0x040c,           // French (France)
    0x040d,           // Hebrew
    0x040e,           // Hungarian
    0x0410,           // Italian (Italy)
    0x0411,           // Japanese
    0x0412,           // Korean
    0x0414,           // Norwegian (Bokmal)
    0x0413,           // Dutch (Netherlands)
    0x0415,           // Polish
    0x0416,           // Portuguese (Brazil)
    0x0816,           // Portuguese (Portugal)
    0x0419,           // Russian
    0x041d,           // Swedish
    0x041f,           // Turkish
    0x0809,           // English (United Kingdom)
};

}  // namespace kwa
