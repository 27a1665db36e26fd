#pragma once

#include <string>

#include "payload/payload_contents.h"

namespace kwa {

// A list of contents in the form of payload/contents.json: one line a file, so that a changed file is a changed line.
std::string ContentsText(const PayloadContents& contents);

}  // namespace kwa
