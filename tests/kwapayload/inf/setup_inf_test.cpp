// How Setup splits an INF into sections, lines and fields, and what it refuses. The rows agree with Wine 8's setupapi,
// except for the limits of Windows Vista and the warnings.
#include "inf/setup_inf.h"

#include <gtest/gtest.h>

#include "inf_cases.h"

namespace {

using namespace std::string_literals;

const std::string kHeader = "[Version]\r\nSignature=\"$CHICAGO$\"\r\n";

// Each line of [x] as "number key=value|value", and then the faults as "severity code:place".
std::string Show(const std::string& bytes) {
  const kwa::SetupInf inf{kwa::InfText(kwa::ByteSpan(bytes))};
  std::string shown;
  for (const kwa::InfLine& line : inf.Lines("x")) {
    shown += std::to_string(line.number) + " " + line.key + "=" + line.values[0];
    for (std::size_t i = 1; i < line.values.size(); ++i) {
      shown += "|" + line.values[i];
    }
    shown += "\n";
  }
  for (const kwa::Finding& fault : inf.Faults()) {
    shown += (fault.severity == kwa::Severity::Error ? "ERROR " : "warning ") + fault.code + ":" + fault.where + "\n";
  }
  return shown;
}

TEST(SetupInf, ReadsLinesAsSetupDoes) {
  // The lines after a header and "[x]" in line 3.
  const std::pair<std::string, std::string> cases[] = {
      {"a = b,c , d e\t\r\n\r\n;\r\n x\v\r\n", "4 a=b|c|d e\n7 x=x\n"},
      {"a,b=c\n=d\ne=\nf=,g,\n,", "4 =a|b=c\n5 =d\n6 e=\n7 f=|g|\n8 =|\n"},
      {"a=\"b;,=\"\"c\"\" \" ; d\n\"e=f\" = g\" \"h\ni=\"\"j\n", "4 a=b;,=\"c\" \n5 e=f=g h\n6 i=j\n"},
      {"a=\"b\\\nc=d\n", "4 a=b\\\n5 c=d\nwarning inf-quote-open:line 4\n"},
      {"a=b \\ \n  c,\\;d\n \\\ne\\\\\n;\nf\\ g=\\h\n", "4 a=bc|e\n9 f\\ g=\\h\n"},
      {"a=b\\", "4 a=b\n"},
      {"1=disk,,,\\\n[y]\na=1\n", "4 1=disk|||[y]\n6 a=1\nwarning inf-section-continued:line 5\n"},
      {"a=1\n[y]\nb=2\n [X] c\nd=3\n", "4 a=1\n8 d=3\n"},
      {"a=1\n[ x ]\nb=2\n[x;]\nc=3\n[\"x\"]\nd=4\n[[x]\ne=5\n", "4 a=1\n"},
      {"a=1\x1A\nb=2\n", "4 a=1\n"},
      {"a=1\rb=2\n", "4 a=1\rb=2\nwarning inf-lone-cr:line 4\n"},
      {"a=1\0b\n"s, "4 a=1\0b\nwarning inf-nul:line 4\n"s},
      {"a=%S%%%%t%,\"%s%\",%u%s%,%S,%s;%\n%s%=1\n[Strings]\ns=\"1,2\"\ns=3\nT=%s%\n",
       "4 a=1,2%%s%|1,2|%u%s%|%S|%s\n5 %s%=1\n"},
      {"a=" + std::string(511, 'v') + "\n", "4 a=" + std::string(511, 'v') + "\n"},
      {"a=" + std::string(5000, 'v') + "\n", "4 a=" + std::string(4095, 'v') + "\nwarning inf-field-long:line 4\n"},
      {"a=%s%%s%\n[Strings]\ns=" + std::string(4000, 'v') + "\n",
       "4 a=" + std::string(4095, 'v') + "\nwarning inf-field-long:line 6\n"},
  };
  for (const auto& [lines, shown] : cases) {
    SCOPED_TRACE(lines.substr(0, 300));
    const std::string inf = kHeader + "[x]\n" + lines;
    EXPECT_EQ(Show(inf), shown);
    EXPECT_EQ(Show(Utf16Inf(inf)), shown);
  }
}

TEST(SetupInf, RefusesWhatSetupRefuses) {
  const std::pair<std::string, std::string> cases[] = {
      {"[version]\nsignature = $windows nt$,x\n", ""},
      {"[Version]\na=b\n[VERSION]\nSignature=\"$Windows 95$\"\n[" + std::string(255, 'n') + "]\n", ""},
      {"", "ERROR inf-signature:\n"},
      {"[Version]\nSignature\n", "ERROR inf-signature:line 2\n"},
      {"[Version]\nSignature=x\nSignature=$CHICAGO$\n", "ERROR inf-signature:line 2\n"},
      {"[x]\nSignature=$CHICAGO$\n", "2 Signature=$CHICAGO$\nERROR inf-signature:\n"},
      {"; a\n\nb\nc\n" + kHeader, "ERROR inf-text-first:line 3\n"},
      {kHeader + "[a\n[b]\n[c\n", "ERROR inf-section-open:line 3\n"},
      {kHeader + "[" + std::string(256, 'n') + "]\n", "ERROR inf-section-long:line 3\n"},
  };
  for (const auto& [inf, shown] : cases) {
    SCOPED_TRACE(inf.substr(0, 300));
    EXPECT_EQ(Show(inf), shown);
  }
}

std::string Repeated(std::size_t count, const std::string& text) {
  std::string whole;
  while (count-- > 0) {
    whole += text;
  }
  return whole;
}

TEST(SetupInf, SaysThatALimitIsMet) {
  // With the header, three lines and one value come before.
  const std::pair<std::string, std::string> cases[] = {
      {Repeated(200000, "\n"), ""},
      {Repeated(99997, "a\n"), ""},
      {Repeated(99998, "a\n"), "inf-too-large"},
      {Repeated(99998, "[y]\n"), "inf-too-large"},
      {Repeated(199998, ","), ""},
      {Repeated(199999, ","), "inf-too-large"},
      {"a=" + Repeated(5000, "%s%,") + "\n[Strings]\ns=" + std::string(500, 's'), ""},
      {"a=" + Repeated(50000, "%s%,") + "\n[Strings]\ns=" + std::string(500, 's'), "inf-too-large"},
  };
  for (const auto& [lines, code] : cases) {
    const std::string inf = kHeader + "[x]\n" + lines;
    const kwa::SetupInf parsed{kwa::InfText(kwa::ByteSpan(inf))};
    EXPECT_EQ(parsed.Faults().Empty() ? "" : parsed.Faults().begin()->code, code) << lines.substr(0, 20);
  }
}

}  // namespace
