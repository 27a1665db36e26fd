#include "report/bill_of_materials.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "report/words.h"
#include "trust/digest.h"

namespace kwa {
namespace {

using nlohmann::ordered_json;

const char* ComponentType(const FileKind& kind) {
  if (!kind.program) {
    return "file";
  }
  return kind.program->subsystem == kImageSubsystemNative ? "device-driver"
         : kind.program->isDll                            ? "library"
                                                          : "application";
}

// Adds what a component has beside type and name, as far as it is known.
void AddFacts(const std::optional<VersionRecord>& version, const std::string& supplier, const std::string& sha256,
              ordered_json* component) {
  if (version) {
    (*component)["version"] = version->fileVersion;
  }
  if (!supplier.empty()) {
    (*component)["supplier"] = {{"name", Escaped(supplier)}};
  }
  if (const std::string description = RecordText(version, "FileDescription"); !description.empty()) {
    (*component)["description"] = Escaped(description);
  }
  (*component)["hashes"] = ordered_json::array({{{"alg", "SHA-256"}, {"content", sha256}}});
}

ordered_json Property(const char* name, const std::string& value) {
  return {{"name", std::string("kwapayload:") + name}, {"value", value}};
}

void AddSigners(const std::vector<Signature>& signatures, ordered_json* properties) {
  if (!signatures.empty()) {
    properties->push_back(Property("signer", SignersText(signatures)));
  }
}

// The redistributable program has two names. Whose it is, only its signature tells.
std::string Supplier(const InspectedFile& file) {
  if (!IsSameText(file.item.name, "dpinst.exe") && !IsSameText(file.item.name, "dpinst64.exe")) {
    return RecordText(file.version, "CompanyName");
  }
  const std::vector<Signature>& signatures = file.trust.signatures;
  const bool isOfMicrosoft = std::any_of(signatures.begin(), signatures.end(), [](const Signature& signature) {
    return signature.check && signature.signer.rfind("Microsoft ", 0) == 0;
  });
  return isOfMicrosoft ? "Microsoft Corporation" : "";
}

ordered_json FileComponent(const InspectedFile& file) {
  ordered_json component = {{"type", ComponentType(file.kind)}, {"name", Escaped(file.item.name)}};
  AddFacts(file.version, Supplier(file), file.sha256, &component);
  component["properties"] = {Property("archive", std::string(1, file.item.archive)),
                             Property("size", std::to_string(file.item.body.Size())),
                             Property("kind", KindText(file.kind))};
  AddSigners(file.trust.signatures, &component["properties"]);
  return component;
}

// A UUID of version 8 (RFC 9562), which leaves the bits to its maker, from the first half of a digest.
std::string UuidFrom(std::string digest) {
  digest[12] = '8';
  digest[16] = "89ab"[digest[16] % 4];
  return digest.substr(0, 8) + '-' + digest.substr(8, 4) + '-' + digest.substr(12, 4) + '-' + digest.substr(16, 4) +
         '-' + digest.substr(20, 12);
}

}  // namespace

std::string BillOfMaterials(const std::string& name, const Inspection& inspection) {
  ordered_json installer = {{"type", inspection.installer.image ? "application" : "file"}, {"name", Escaped(name)}};
  AddFacts(inspection.version, RecordText(inspection.version, "CompanyName"), inspection.sha256, &installer);
  if (inspection.installer.image) {
    // Without "array", some compilers take a list of one object for the object.
    installer["properties"] = ordered_json::array({Property("fingerprint", inspection.program.fingerprint)});
    AddSigners(inspection.signatures, &installer["properties"]);
  }
  ordered_json components = ordered_json::array();
  for (const InspectedFile& file : inspection.files) {
    components.push_back(FileComponent(file));
  }
  ordered_json document = {{"$schema", "http://cyclonedx.org/schema/bom-1.6.schema.json"},
                           {"bomFormat", "CycloneDX"},
                           {"specVersion", "1.6"},
                           {"serialNumber", ""},
                           {"version", 1},
                           {"metadata", {{"component", std::move(installer)}}},
                           {"components", std::move(components)}};
  document["serialNumber"] = "urn:uuid:" + UuidFrom(Sha256Hex(ByteSpan(document.dump())));
  return document.dump(2) + '\n';
}

}  // namespace kwa
