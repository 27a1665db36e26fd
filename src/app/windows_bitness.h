#pragma once

namespace kwa {

// Whether this 32-bit program runs on 64-bit Windows: 1 if so, 0 on 32-bit Windows.
int Is64BitWindows();

}  // namespace kwa
