#pragma once

#include <map>
#include <string>
#include <vector>

namespace kwa {

struct XmlElement {
  std::wstring name;
  std::map<std::wstring, std::wstring> attributes;
  std::wstring text;  // without the texts of its children; each line end is a line feed
  std::vector<XmlElement> children;

  // The first child of that name; null when there is none.
  const XmlElement* Child(const wchar_t* childName) const;
};

// Reads a file with the parser of Windows and returns its root. The root has no name when the file does not exist.
// Throws std::runtime_error with the line and the reason, in UTF-8, when the file is not well-formed. Under Wine, the
// line can be the start of the text before the fault.
XmlElement ReadXmlFile(const std::wstring& path);

}  // namespace kwa
