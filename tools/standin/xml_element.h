#pragma once

#include <map>
#include <string>
#include <vector>

namespace kwa {

struct XmlElement {
  std::wstring name;
  std::map<std::wstring, std::wstring> attributes;
  std::wstring text;  // all of its own text, line ends as line feeds
  std::vector<XmlElement> children;

  // The first child of that name; null when there is none.
  const XmlElement* Child(const wchar_t* childName) const;
};

// Reads a file with the platform's parser and returns its root, which has no name when the file does not exist. Throws
// std::runtime_error with the line and the reason, in UTF-8, when the file is not well-formed. Under Wine the line can
// be that where the piece of text before the fault begins.
XmlElement ReadXmlFile(const std::wstring& path);

}  // namespace kwa
