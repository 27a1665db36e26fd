#include "report/bill_of_materials.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>

#include "base/ascii_text.h"
#include "pe/version_record.h"
#include "report/escaped_text.h"
#include "trust/digest.h"

namespace kwa {
namespace {

using nlohmann::ordered_json;

const char* ComponentType(const std::string& kind) {
  const auto holds = [&kind](const char* text) { return kind.find(text) != std::string::npos; };
  if (kind.rfind("PE32", 0) != 0) {
    return "file";
  }
  return holds(", native") ? "device-driver" : holds(", DLL") ? "library" : "application";
}

// The redistributable program goes by these two names, and some editions of it have no version record.
bool IsDpinst(const std::string& name) {
  const std::string upper = UpperCase(name);
  return upper == "DPINST.EXE" || upper == "DPINST64.EXE";
}

// What a component has beyond type and name, as far as it is known.
void AddFacts(const std::string& version, const std::string& supplier, const std::string& description,
              const std::string& sha256, ordered_json* component) {
  if (!version.empty()) {
    (*component)["version"] = version;
  }
  if (!supplier.empty()) {
    (*component)["supplier"] = {{"name", supplier}};
  }
  if (!description.empty()) {
    (*component)["description"] = description;
  }
  (*component)["hashes"] = ordered_json::array({{{"alg", "SHA-256"}, {"content", sha256}}});
}

ordered_json FileComponent(const ListedFile& file) {
  ordered_json component = {{"type", ComponentType(file.kind)}, {"name", file.name}};
  const std::string supplier = !file.company.empty() ? file.company
                               : IsDpinst(file.name) ? "Microsoft Corporation"
                                                     : "";
  AddFacts(file.version, supplier, file.description, file.sha256, &component);
  ordered_json properties = ordered_json::array();
  const auto add = [&properties](const char* name, const std::string& value) {
    properties.push_back({{"name", std::string("kwapayload:") + name}, {"value", value}});
  };
  add("archive", file.archive);
  add("size", std::to_string(file.size));
  add("kind", file.kind);
  if (const std::string signers = file.Signers(); !signers.empty()) {
    add("signer", signers);
  }
  component["properties"] = properties;
  return component;
}

// A UUID of version 8 (RFC 9562), whose bits are the maker's own, from the first half of a digest.
std::string UuidFrom(std::string digest) {
  digest[12] = '8';
  digest[16] = "89ab"[digest[16] % 4];
  return digest.substr(0, 8) + '-' + digest.substr(8, 4) + '-' + digest.substr(12, 4) + '-' + digest.substr(16, 4) +
         '-' + digest.substr(20, 12);
}

}  // namespace

void WriteBillOfMaterials(ByteSpan file, const std::string& name, const Listing& listing, std::ostream& stream) {
  ordered_json installer = {{"type", listing.isInstaller ? "application" : "file"}, {"name", EscapedText(name)}};
  VersionRecord record = FileVersionRecord(file);
  AddFacts(record.fileVersion, record.texts["CompanyName"], record.texts["FileDescription"], Sha256Hex(file),
           &installer);
  ordered_json components = ordered_json::array();
  for (const ListedFile& listed : listing.files) {
    components.push_back(FileComponent(listed));
  }
  ordered_json document = {{"$schema", "http://cyclonedx.org/schema/bom-1.6.schema.json"},
                           {"bomFormat", "CycloneDX"},
                           {"specVersion", "1.6"},
                           {"serialNumber", ""},
                           {"version", 1},
                           {"metadata", {{"component", installer}}},
                           {"components", components}};
  document["serialNumber"] = "urn:uuid:" + UuidFrom(Sha256Hex(ByteSpan(document.dump())));
  stream << document.dump(2) << '\n';
}

}  // namespace kwa
