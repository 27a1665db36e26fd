#include "app/folder_tree.h"

#include <windows.h>
// It needs windows.h before it.
#include <shellapi.h>

namespace kwa {

int DeleteFolderTree(const char* path) {
  SHFILEOPSTRUCTA operation = {};
  operation.wFunc = FO_DELETE;
  operation.pFrom = path;
  operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION;
  return SHFileOperationA(&operation) == 0 ? 1 : 0;
}

}  // namespace kwa
