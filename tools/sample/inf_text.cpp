#include "inf_text.h"

#include <cstdio>
#include <cstdlib>

#include "padding.h"

namespace kwa {
namespace {

const char kHead[] = R"(; Marlin USB audio interfaces: driver package of the sample payload.
; Nothing that this package installs does anything.

[Version]
Signature = "$WINDOWS NT$"
Class = MEDIA
ClassGUID = {4d36e96c-e325-11ce-bfc1-08002be10318}
Provider = "KWA"
DriverVer = 02/13/2014,1.0.42.0
DriverPackageDisplayName = "Marlin USB"
CatalogFile = marlin_usb.cat

[SourceDisksNames]
1 = %DiskName%

[SourceDisksFiles]
marlin_usb.inf = 1
marlinusb.exe = 1
marlin_usb.sys = 1
marlin_usb_64.sys = 1
marlin_usb_asio.dll = 1
marlin_usb_asio_64.dll = 1
Panorama.chm = 1
Panorama.exe = 1

[DestinationDirs]
Marlin.Driver.NTx86 = 12
Marlin.Driver.NTamd64 = 12
Marlin.Asio.NTx86 = 11
Marlin.Asio.NTamd64 = 11
Marlin.Programs = 16422,KWA

[Marlin.Programs]
marlinusb.exe
Panorama.exe
Panorama.chm

[Manufacturer]
%KWA% = KWA,NTx86,NTamd64

)";

// For each platform, @P, with the ending of its files' names, @S. Its models go before it.
const char kPlatform[] = R"(
[Marlin.@P]
Include = ks.inf,wdmaudio.inf
Needs = KS.Registration,WDMAUDIO.Registration
CopyFiles = Marlin.Driver.@P,Marlin.Asio.@P,Marlin.Programs
AddReg = Marlin.@P.AddReg,Marlin.Equalizer.AddReg

[Marlin.@P.AddReg]
HKR,,AssociatedFilters,,"wdmaud,swmidi,redbook"
HKR,,Driver,,marlin_usb@S.sys
HKR,Drivers,SubClasses,,"wave,midi,mixer"
HKLM,"Software\ASIO\Marlin USB",CLSID,,"{6E1F2C50-8B0D-4C61-9C0E-2D5B7A4F1042}"

[Marlin.@P.Services]
AddService = marlin_usb@S,2,Marlin.@P.Service

[Marlin.@P.Service]
DisplayName = %Service.DisplayName%
ServiceType = 1 ; SERVICE_KERNEL_DRIVER
StartType = 3 ; SERVICE_DEMAND_START
ErrorControl = 1 ; SERVICE_ERROR_NORMAL
ServiceBinary = %12%\marlin_usb@S.sys

[Marlin.Driver.@P]
marlin_usb@S.sys

[Marlin.Asio.@P]
marlin_usb_asio@S.dll

)";

const char kPresets[] = R"(; Factory presets of the equaliser: each band's gain in tenths of a decibel.
[Marlin.Equalizer.AddReg]
)";

const char kStrings[] = R"inf(
[Strings]
KWA = "KWA"
DiskName = "Marlin USB driver disk"
Service.DisplayName = "Marlin USB Audio Driver (WDM)"
)inf";

constexpr const char* kDevices[] = {"Marlin R1", "Marlin R2", "Kestrel", "Marlin R3", "Marlin R4"};
constexpr int kDeviceCount = sizeof kDevices / sizeof kDevices[0];

template <typename... Arguments>
std::string Line(const char* format, Arguments... arguments) {
  char text[256];
  std::snprintf(text, sizeof text, format, arguments...);
  return std::string(text) + "\n";
}

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

std::string Platform(const char* platform, const char* suffix) {
  std::string text = Line("[KWA.%s]", platform);
  for (int device = 0; device < kDeviceCount; ++device) {
    for (int revision = 1; revision <= 12; ++revision) {
      text += Line("%%Device.%d%% = Marlin,USB\\VID_FFFE&PID_%04X&REV_%04d&MI_00", device,
                   static_cast<unsigned>(0x100 + device), 100 + revision * 10);
    }
  }
  return text + Replaced(Replaced(kPlatform, "@P", platform), "@S", suffix);
}

// The gain of a preset's band, -120 to 120: each preset a hill of its own.
std::string PresetLine(int preset, int band) {
  const int distance = band - preset * 7 % 31;
  return Line("HKR,\"Equalizer\\%03d\",\"Band %02d\",0x00010001,%d", preset, band, 120 - 8 * std::abs(distance));
}

}  // namespace

std::string MakeInf(std::size_t size) {
  std::string text = kHead + Platform("NTx86", "") + Platform("NTamd64", "_64") + kPresets;
  std::string end = kStrings;
  for (int device = 0; device < kDeviceCount; ++device) end += Line("Device.%d = \"%s\"", device, kDevices[device]);
  end = Replaced(end + "; End of marlin_usb.inf @", "\n", "\r\n");
  text = Replaced(text, "\n", "\r\n");

  // All lines of the presets together with the rule in the last line fill the file.
  const std::size_t neededSize = text.size() + end.size() - 1 + 2;
  RequireSize(neededSize, size);
  std::size_t room = size - neededSize;
  for (int number = 0;; ++number) {
    const std::string line = Replaced(PresetLine(number / 31, number % 31), "\n", "\r\n");
    if (line.size() > room) break;
    text += line;
    room -= line.size();
  }
  return text + Replaced(end, "@", std::string(room, '-')) + "\r\n";
}

}  // namespace kwa
