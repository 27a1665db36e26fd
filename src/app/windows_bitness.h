#pragma once

namespace kwa {

// Returns 1 when this 32-bit program runs on 64-bit Windows, and 0 on 32-bit Windows.
int Is64BitWindows();

}  // namespace kwa
