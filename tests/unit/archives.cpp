// The process's two archives, which a test fills.

#include "archive/payload_archive.h"

namespace kwa {

PayloadArchive archiveA = {};
PayloadArchive archiveB = {};

}  // namespace kwa
