#include "held_dpinst.h"

#include <gtest/gtest.h>

#include "test_folder.h"

namespace {

// Its own among all runs of this and other test processes.
std::string NextName() {
  static int number = 0;
  return "kwa_test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++number);
}

}  // namespace

void HeldDpinst::PutInto(InstallerImage& image) {
  const std::string program = ReadWholeFile(KWA_WAITING_DPINST);
  image.SetBody(image.Find("dpinst.exe"), program);
  image.SetBody(image.Find("dpinst64.exe"), program);
}

HeldDpinst::HeldDpinst(const std::string& folder)
    : name(NextName()),
      processFile(folder + "\\" + name),
      started(CreateEventA(nullptr, TRUE, FALSE, (name + "_started").c_str())),
      end(CreateEventA(nullptr, TRUE, FALSE, (name + "_end").c_str())) {}

HeldDpinst::~HeldDpinst() {
  LetEnd();
  CloseHandle(started);
  CloseHandle(end);
  CloseHandle(process);
}

void HeldDpinst::Hold(RunSetup& setup) const {
  setup.environment["KWA_TEST_PROCESS_FILE"] = processFile;
  setup.environment["KWA_TEST_STARTED"] = name + "_started";
  setup.environment["KWA_TEST_END"] = name + "_end";
}

bool HeldDpinst::AwaitStart(DebuggedRun& run) {
  if (!run.AwaitUntil([this] { return WaitForSingleObject(started, 0) == WAIT_OBJECT_0; })) {
    return false;
  }
  process = OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, std::stoul(ReadWholeFile(processFile)));
  EXPECT_NE(process, nullptr);
  return true;
}

bool HeldDpinst::IsRunning() const {
  return process != nullptr && WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
}

void HeldDpinst::LetEnd() {
  SetEvent(end);
  if (process != nullptr) {
    WaitForSingleObject(process, INFINITE);
  }
}

void HeldDpinst::Kill() {
  TerminateProcess(process, 0x80010000);
}
