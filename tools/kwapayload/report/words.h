#pragma once

#include <string>
#include <vector>

#include "base/finding.h"
#include "installer/comparison.h"

// Words for facts that more than one report needs. Texts of a file are escaped; a fact that is not there is "".

namespace kwa {

const char* SeverityWord(Severity severity);

// Who signed, such as "Maker, Microsoft (BROKEN)".
std::string SignersText(const std::vector<Signature>& signatures);

// What a signature says: "Maker, 2014-02-13 12:00:00 UTC".
std::string SignatureText(const Signature& signature);

// "yes", "NO", or "" where no catalog has to cover the file or can be read.
std::string CoverageText(const InspectedFile& file);

// The version of a file's version record, such as "1.0.42.0".
std::string VersionText(const std::optional<VersionRecord>& version);

// The names that the wizard shows for a device family, without the line feeds.
std::vector<std::string> DeviceNames(const DeviceFamily& family, bool isGerman);

// The names of a comparison's fields, and what one state of a file or package has for them.
const char* FieldName(FileField field);
const char* FieldName(PackageField field);
std::string FieldText(FileField field, const InspectedFile& file);
std::string FieldText(PackageField field, const Inspection& inspection);

// "one, two, three".
std::string Joined(const std::vector<std::string>& texts);

}  // namespace kwa
