#include "dpinst/device_families.h"

#include <cstring>
#include <iterator>
#include <string_view>

namespace kwa {
namespace {

const char* const kOspreyNetRows[] = {"Osprey Q1"};

const char* const kMadiRows[] = {"Osprey Q2", "Osprey Q3", "Tern K4 (Update Mode)"};

const char* const kUsbRows[] = {"Marlin R1", "Marlin R2", "Kestrel", "Marlin R3", "Marlin R4"};

const char* const kMarlinRows[] = {"Marlin T1", "Marlin T2", "Marlin R2", "Marlin R3", "Marlin R4"};

const char* const kVireoeQxRows[] = {"Vireoe Z9", "Osprey Q2"};

// Two series on two lines, each with its own brackets.
const char* const kVireoRows[] = {
    "Vireo Series (G-16",  "J1", "7101",   "7102", "Plover", "Dunlin", "Gannet)",
    "\nVireoe Series (Y2", "J1", "Osprey", "Y3",   "Petrel", "Y4",     "Y5)",
};
const char* const kVireoGermanRows[] = {
    "Vireo Serie (G-16",  "J1", "7101",   "7102", "Plover", "Dunlin", "Gannet)",
    "\nVireoe Serie (Y2", "J1", "Osprey", "Y3",   "Petrel", "Y4",     "Y5)",
};
static_assert(std::size(kVireoRows) == std::size(kVireoGermanRows));

template <unsigned N>
constexpr DeviceFamily Family(const char* key, const char* const (&rows)[N], const char* const (&germanRows)[N]) {
  return {key, rows, germanRows, N};
}

template <unsigned N>
constexpr DeviceFamily Family(const char* key, const char* const (&rows)[N]) {
  return Family(key, rows, rows);
}

}  // namespace

// When a name contains several keys, the first family in this order wins: "Marlin USB" belongs to the USB family, and
// "Vireoe QX" does not belong to the Vireo family.
constexpr DeviceFamily kDeviceFamilies[] = {
    Family("OspreyNET", kOspreyNetRows),
    Family("MADI", kMadiRows),
    Family("USB", kUsbRows),
    Family("Marlin", kMarlinRows),
    Family("Vireoe QX", kVireoeQxRows),
    Family("Vireo", kVireoRows, kVireoGermanRows),
};

// A name that contains the longer of two such keys also contains the shorter one.
constexpr bool IsEachFamilyReachable() {
  for (std::size_t i = 0; i < std::size(kDeviceFamilies); ++i) {
    for (std::size_t j = i + 1; j < std::size(kDeviceFamilies); ++j) {
      if (std::string_view(kDeviceFamilies[j].key).find(kDeviceFamilies[i].key) != std::string_view::npos) {
        return false;
      }
    }
  }
  return true;
}
static_assert(IsEachFamilyReachable(), "a family comes after one whose key its own key contains: no name reaches it");

const unsigned kDeviceFamilyCount = std::size(kDeviceFamilies);

const DeviceFamily* FindDeviceFamily(const char* displayName) {
  for (const DeviceFamily& family : kDeviceFamilies) {
    if (std::strstr(displayName, family.key) != nullptr) {
      return &family;
    }
  }
  return nullptr;
}

void WriteDeviceList(std::FILE* stream, const char* displayName, const char* driverVersion, int german) {
  if (const DeviceFamily* const family = FindDeviceFamily(displayName)) {
    const char* const* const rows = german != 0 ? family->germanRows : family->rows;
    for (unsigned i = 0; i < family->rowCount; ++i) {
      std::fprintf(stream, "%s", rows[i]);
      if (i + 1 < family->rowCount) {
        std::fprintf(stream, ", ");
      }
    }
  }
  std::fprintf(stream, "\n\n");
  std::fprintf(stream, "%s\n", driverVersion);
}

}  // namespace kwa
