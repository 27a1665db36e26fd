#pragma once

#include <string>

// The dpinst.xml of the package "Marlin USB", version 02/13/2014,1.0.42.0: expected/dpinst.xml, with the line for old
// Windows versions put in if asked for.
std::string ExpectedDocument(bool legacyMode);

void ReplaceAll(std::string& text, const std::string& what, const std::string& by);
