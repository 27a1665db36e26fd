#pragma once

namespace kwa {

// Deletes a folder with everything in it, outright and without asking. The shell may show its own message when a
// deletion fails.
//
// path  8-bit path without a trailing separator, ended by TWO zero bytes: the shell takes a list of paths
//
// Returns 1 when the shell reports success, else 0 (also when there is no such folder).
int DeleteFolderTree(const char* path);

}  // namespace kwa
