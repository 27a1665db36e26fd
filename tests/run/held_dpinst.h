#pragma once

#include <windows.h>

#include <string>

#include "debugged_run.h"
#include "installer_image.h"

// A DPInst that stands still until the test lets it go on (waiting_dpinst.cpp), for one run of the installer.
class HeldDpinst {
 public:
  // Puts it into a copy of the installer in both editions' place.
  static void PutInto(InstallerImage& image);

  // folder: where its process number is to be written.
  explicit HeldDpinst(const std::string& folder);
  ~HeldDpinst();
  HeldDpinst(const HeldDpinst&) = delete;
  HeldDpinst& operator=(const HeldDpinst&) = delete;

  // Adds to a run what makes its DPInst this one.
  void Hold(RunSetup& setup) const;

  // Lets the installer run until DPInst has started; false when it ended before that.
  bool AwaitStart(DebuggedRun& run);

  // Whether it was started and still runs.
  bool IsRunning() const;
  void LetEnd();
  void Kill();

 private:
  std::string name;
  std::string processFile;
  HANDLE started;
  HANDLE end;
  HANDLE process = nullptr;
};
