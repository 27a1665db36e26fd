#pragma once

namespace kwa {

// Deletes a folder with everything in it, without the recycle bin and without a question. When a deletion fails, the
// shell may show a message.
//
// path  8-bit path without a trailing separator and with TWO zero bytes at its end: the shell takes a list of paths
//
// Returns 1 when the shell reports success, else 0. A folder that does not exist gives 0.
int DeleteFolderTree(const char* path);

}  // namespace kwa
