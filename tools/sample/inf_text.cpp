#include "inf_text.h"

#include <cstdio>
#include <string>
#include <vector>

#include "padding.h"

namespace kwa {
namespace {

constexpr int kRevisions = 12;  // of each device's hardware

struct Device {
  const char* section;  // name of its install section
  const char* name;
  int productId;
  int channels;
};

constexpr Device kDevices[] = {
    {"MarlinR1", "Marlin R1", 0x0101, 4},  {"MarlinR2", "Marlin R2", 0x0102, 8},  {"Kestrel", "Kestrel", 0x0120, 2},
    {"MarlinR3", "Marlin R3", 0x0103, 16}, {"MarlinR4", "Marlin R4", 0x0104, 32},
};

// Centre frequencies of a third-octave equaliser, in Hz.
constexpr int kBands[] = {20,   25,   31,   40,   50,   63,    80,    100,   125,  160,  200,
                          250,  315,  400,  500,  630,  800,   1000,  1250,  1600, 2000, 2500,
                          3150, 4000, 5000, 6300, 8000, 10000, 12500, 16000, 20000};
constexpr int kBandCount = sizeof kBands / sizeof kBands[0];

constexpr const char* kPresetNames[] = {"Flat",      "Speech",   "Vocal",   "Choir",     "Piano",    "Strings",
                                        "Brass",     "Acoustic", "Bass",    "Drums",     "Overhead", "Room",
                                        "Broadcast", "Night",    "Monitor", "Headphones"};
constexpr int kPresetNameCount = sizeof kPresetNames / sizeof kPresetNames[0];

template <typename... Arguments>
std::string Line(const char* format, Arguments... arguments) {
  char text[256];
  std::snprintf(text, sizeof text, format, arguments...);
  return std::string(text) + "\r\n";
}

std::string Lines(const std::vector<const char*>& lines) {
  std::string text;
  for (const char* line : lines) text += std::string(line) + "\r\n";
  return text;
}

std::string Head() {
  return Lines({
      "; Marlin USB audio interfaces: driver package of the sample payload.",
      "; Nothing that this package installs does anything.",
      "",
      "[Version]",
      "Signature = \"$WINDOWS NT$\"",
      "Class = MEDIA",
      "ClassGUID = {4d36e96c-e325-11ce-bfc1-08002be10318}",
      "Provider = \"KWA\"",
      "DriverVer = 02/13/2014,1.0.42.0",
      "DriverPackageDisplayName = \"Marlin USB\"",
      "CatalogFile = marlin_usb.cat",
      "",
      "[SourceDisksNames]",
      "1 = %DiskName%",
      "",
      "[SourceDisksFiles]",
      "marlin_usb.inf = 1",
      "marlinusb.exe = 1",
      "marlin_usb.sys = 1",
      "marlin_usb_64.sys = 1",
      "marlin_usb_asio.dll = 1",
      "marlin_usb_asio_64.dll = 1",
      "Panorama.chm = 1",
      "Panorama.exe = 1",
      "",
      "[DestinationDirs]",
      "Marlin.Driver.NTx86 = 12",
      "Marlin.Driver.NTamd64 = 12",
      "Marlin.Asio.NTx86 = 11",
      "Marlin.Asio.NTamd64 = 11",
      "Marlin.Asio.Wow64 = 10,SysWOW64",
      "Marlin.Programs = 16422,KWA",
      "",
      "[Marlin.Driver.NTx86]",
      "marlin_usb.sys",
      "",
      "[Marlin.Driver.NTamd64]",
      "marlin_usb_64.sys",
      "",
      "[Marlin.Asio.NTx86]",
      "marlin_usb_asio.dll",
      "",
      "[Marlin.Asio.NTamd64]",
      "marlin_usb_asio_64.dll",
      "",
      "[Marlin.Asio.Wow64]",
      "marlin_usb_asio.dll",
      "",
      "[Marlin.Programs]",
      "marlinusb.exe",
      "Panorama.exe",
      "Panorama.chm",
      "",
      "[Manufacturer]",
      "%KWA% = KWA,NTx86,NTamd64",
      "",
      "[KWA]",
      "; Windows 98 and Me are not served.",
      "",
  });
}

std::string Models(const char* platform) {
  std::string text = Line("[KWA.%s]", platform);
  for (const Device& device : kDevices) {
    for (int revision = 1; revision <= kRevisions; ++revision) {
      text += Line("%%%s.DeviceDesc%% = %s,USB\\VID_FFFE&PID_%04X&REV_%02d%02d&MI_00", device.section, device.section,
                   static_cast<unsigned>(device.productId), 1 + revision / 10, revision % 10 * 10);
    }
  }
  return text + "\r\n";
}

std::string InstallSection(const Device& device, bool x64) {
  const char* const platform = x64 ? "NTamd64" : "NTx86";
  std::string text = Line("[%s.%s]", device.section, platform);
  text += Line("Include = ks.inf,wdmaudio.inf");
  text += Line("Needs = KS.Registration,WDMAUDIO.Registration");
  text += Line("CopyFiles = Marlin.Driver.%s,Marlin.Asio.%s%s,Marlin.Programs", platform, platform,
               x64 ? ",Marlin.Asio.Wow64" : "");
  text += Line("AddReg = Marlin.AddReg,%s.AddReg,Marlin.Equalizer.AddReg", device.section);
  text += Line("");
  text += Line("[%s.%s.Interfaces]", device.section, platform);
  for (const char* category : {"AUDIO", "RENDER", "CAPTURE"}) {
    text += Line("AddInterface = %%KSCATEGORY_%s%%,%%KSNAME_Wave%%,%s.Interface", category, device.section);
  }
  text += Line("");
  text += Line("[%s.%s.Services]", device.section, platform);
  text += Line("AddService = marlin_usb%s,2,Marlin.Service.%s", x64 ? "_64" : "", platform);
  return text + Line("");
}

std::string DeviceSections(const Device& device) {
  std::string text = InstallSection(device, false) + InstallSection(device, true);
  text += Line("[%s.Interface]", device.section);
  text += Line("AddReg = %s.Interface.AddReg", device.section);
  text += Line("");
  text += Line("[%s.Interface.AddReg]", device.section);
  text += Line("HKR,,CLSID,,%%Proxy.CLSID%%");
  text += Line("HKR,,FriendlyName,,%%%s.DeviceDesc%%", device.section);
  text += Line("");
  text += Line("[%s.AddReg]", device.section);
  text += Line("HKR,Drivers,SubClasses,,\"wave,midi,mixer\"");
  for (int channel = 1; channel <= device.channels; ++channel) {
    text += Line("HKR,\"Channels\\Input %02d\",Name,,\"%s In %d\"", channel, device.name, channel);
    text += Line("HKR,\"Channels\\Output %02d\",Name,,\"%s Out %d\"", channel, device.name, channel);
  }
  return text + Line("");
}

std::string CommonSections() {
  std::string text;
  for (const char* platform : {"NTx86", "NTamd64"}) {
    text += Line("[Marlin.Service.%s]", platform);
    text += Line("DisplayName = %%Service.DisplayName%%");
    text += Line("ServiceType = 1 ; SERVICE_KERNEL_DRIVER");
    text += Line("StartType = 3 ; SERVICE_DEMAND_START");
    text += Line("ErrorControl = 1 ; SERVICE_ERROR_NORMAL");
    text += Line("ServiceBinary = %%12%%\\marlin_usb%s.sys", platform[2] == 'a' ? "_64" : "");
    text += Line("");
  }
  return text + Lines({
                    "[Marlin.AddReg]",
                    "HKR,,AssociatedFilters,,\"wdmaud,swmidi,redbook\"",
                    "HKR,,Driver,,marlin_usb.sys",
                    "HKR,\"Settings\",BufferSize,0x00010001,256",
                    "HKR,\"Settings\",SampleRate,0x00010001,48000",
                    "HKLM,\"Software\\ASIO\\Marlin USB\",CLSID,,%Asio.CLSID%",
                    "HKLM,\"Software\\ASIO\\Marlin USB\",Description,,\"Marlin USB\"",
                    "",
                });
}

std::string Strings() {
  std::string text = Lines({
      "[Strings]",
      "KWA = \"KWA\"",
      "DiskName = \"Marlin USB driver disk\"",
      "Service.DisplayName = \"Marlin USB Audio Driver (WDM)\"",
      "Asio.CLSID = \"{6E1F2C50-8B0D-4C61-9C0E-2D5B7A4F1042}\"",
      "Proxy.CLSID = \"{17CCA71B-ECD7-11D0-B908-00A0C9223196}\"",
      "KSNAME_Wave = \"Wave\"",
      "KSCATEGORY_AUDIO = \"{6994AD04-93EF-11D0-A3CC-00A0C9223196}\"",
      "KSCATEGORY_RENDER = \"{65E8773E-8F56-11D0-A3B9-00A0C9223196}\"",
      "KSCATEGORY_CAPTURE = \"{65E8773D-8F56-11D0-A3B9-00A0C9223196}\"",
  });
  for (const Device& device : kDevices) text += Line("%s.DeviceDesc = \"%s\"", device.section, device.name);
  return text;
}

// A band's gain in tenths of a decibel, -120 to 120: each preset a hill and a valley of its own.
int Gain(int preset, int band) {
  const int peak = preset * 7 % kBandCount;
  const int dip = preset * 13 % kBandCount;
  const int lift = 120 - 17 * (band > peak ? band - peak : peak - band);
  const int cut = 96 - 23 * (band > dip ? band - dip : dip - band);
  if (preset == 0) return 0;
  return (lift > 0 ? lift : 0) - (cut > 0 ? cut : 0);
}

// The number-th line of the presets, a heading before each preset's bands.
std::string PresetLine(int number) {
  const int preset = number / (kBandCount + 1);
  const int band = number % (kBandCount + 1) - 1;
  const char* const name = kPresetNames[preset % kPresetNameCount];
  const int variant = preset / kPresetNameCount + 1;
  if (band < 0) return Line("HKR,\"Equalizer\\%03d\",Name,,\"%s %d\"", preset, name, variant);
  return Line("HKR,\"Equalizer\\%03d\",\"%d Hz\",0x00010001,0x%08X ; %+.1f dB", preset, kBands[band],
              static_cast<unsigned>(Gain(preset, band)), Gain(preset, band) / 10.0);
}

}  // namespace

std::string MakeInf(std::size_t size) {
  std::string text = Head() + Models("NTx86") + Models("NTamd64");
  for (const Device& device : kDevices) text += DeviceSections(device);
  text += CommonSections();
  text += Line("; Factory presets of the equaliser: each band's gain in tenths of a decibel.");
  text += Line("[Marlin.Equalizer.AddReg]");

  const std::string strings = Line("") + Strings();
  const std::string lastLine = "; End of marlin_usb.inf ";
  const std::size_t neededSize = text.size() + strings.size() + lastLine.size() + 2;
  RequireSize(neededSize, size);
  std::size_t room = size - neededSize;
  for (int number = 0;; ++number) {
    const std::string line = PresetLine(number);
    if (line.size() > room) break;
    text += line;
    room -= line.size();
  }
  return text + strings + lastLine + std::string(room, '-') + "\r\n";
}

}  // namespace kwa
