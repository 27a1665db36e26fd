#include "archive/payload_archive.h"

// Placed by embedded_payload.S.
extern "C" const std::uint32_t embeddedArchiveA[];
extern "C" const std::uint32_t embeddedArchiveB[];

namespace kwa {

PayloadArchive archiveA = {embeddedArchiveA, 0};
PayloadArchive archiveB = {embeddedArchiveB, 0};

}  // namespace kwa
