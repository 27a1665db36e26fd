#pragma once

namespace kwa {

// What the platform makes of a UTF-16 unit where it converts text to the ANSI code page of Western European Windows
// (1252): the unit's byte, else that of a letter that looks alike, else '?'. A surrogate is a '?' each.
char ToCodePage1252(char16_t unit);

}  // namespace kwa
