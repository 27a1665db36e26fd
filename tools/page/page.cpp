// What the page's worker calls: kwapayload's own reports, about files in memory.
#include <emscripten.h>
#include <openssl/crypto.h>

#include <array>
#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "installer/comparison.h"
#include "installer/preview.h"
#include "report/escaped_text.h"
#include "report/json_report.h"
#include "report/list_report.h"
#include "report/text_report.h"
#include "trust/digest.h"
#include "verify/verification.h"

namespace kwa {
namespace {

struct OpenFile {
  std::string name;
  InstallerFile installer;
  std::optional<Inspection> inspection;  // once a report has needed it
};

std::array<std::optional<OpenFile>, 2> files;

// Fails like the commands that need a sound file.
const Inspection& InspectionOf(OpenFile& file) {
  if (file.installer.findings.HasError()) {
    throw std::runtime_error("The structure of " + file.name + " is not sound, so its contents cannot be read.");
  }
  if (!file.inspection) {
    file.inspection = Inspect(file.installer);
  }
  return *file.inspection;
}

Comparison CompareBoth() {
  return Compare(InspectionOf(files[0].value()), InspectionOf(files[1].value()));
}

PackageIdentity IdentityOf(OpenFile& file) {
  const Inspection& inspection = InspectionOf(file);
  return inspection.package ? inspection.package->identity : PackageIdentity();
}

std::string PreviewDoubt(OpenFile& file) {
  const Check certainty = IdentityOf(file).certainty;
  return certainty ? "" : Escaped(certainty.error().what);
}

struct NamedReport {
  std::string_view name;
  std::string (*make)(OpenFile& file);
};

const NamedReport kReports[] = {
    {"verifyJson", [](OpenFile& file) { return VerifyJson(file.name, VerifyInstaller(file.installer, {})); }},
    {"listJson", [](OpenFile& file) { return ListJson(file.name, InspectionOf(file)); }},
    {"listText", [](OpenFile& file) { return ListText(file.name, InspectionOf(file), 0); }},
    {"sha256", [](OpenFile& file) { return Sha256Hex(file.installer.bytes); }},
    {"preview", [](OpenFile& file) { return PreviewDpinstConfig(IdentityOf(file), false); }},
    {"previewXp", [](OpenFile& file) { return PreviewDpinstConfig(IdentityOf(file), true); }},
    {"doubt", PreviewDoubt},
    {"compareJson", [](OpenFile&) { return CompareJson(CompareBoth()); }},
    {"compareText", [](OpenFile&) { return CompareText(CompareBoth()); }},
};

std::string result;  // of the last call

// Whether the call could be done. If not, the result is a sentence with the reason.
template <typename Call>
bool Done(Call call) {
  try {
    result = call();
    return true;
  } catch (const std::bad_alloc&) {
    result = "This browser has too little memory for the file.";
  } catch (const std::exception& error) {
    result = Escaped(error.what());
  }
  return false;
}

}  // namespace
}  // namespace kwa

// Reads a file, as number 0 or 1. The bytes stay where they are; the name is zero-terminated.
extern "C" EMSCRIPTEN_KEEPALIVE bool KwaOpen(unsigned number, const std::uint8_t* bytes, std::size_t size,
                                             const char* name) {
  // libcrypto would look for its configuration in a file.
  OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr);
  return kwa::Done([&] {
    kwa::Result<kwa::InstallerFile> installer = kwa::ReadInstallerFile({bytes, size});
    if (!installer) {
      throw std::runtime_error(name + (' ' + installer.error().what) + '.');
    }
    kwa::files.at(number) = {name, std::move(*installer), std::nullopt};
    return std::string();
  });
}

// Makes the report with that name about an open file.
extern "C" EMSCRIPTEN_KEEPALIVE bool KwaReport(unsigned number, const char* name) {
  return kwa::Done([&] {
    for (const kwa::NamedReport& report : kwa::kReports) {
      if (report.name == name) {
        return report.make(kwa::files.at(number).value());
      }
    }
    throw std::logic_error("no such report");
  });
}

// What the last call left: a report or a reason, zero-terminated, until the next call.
extern "C" EMSCRIPTEN_KEEPALIVE const char* KwaResult() {
  return kwa::result.c_str();
}
