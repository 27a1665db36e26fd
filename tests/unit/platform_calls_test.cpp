// What the installer asks of the platform: which calls, in which order, with which arguments, and what it does with
// answers that no test machine gives.

#include <gtest/gtest.h>

#include "app/dpinst_process.h"
#include "app/folder_tree.h"
#include "app/windows_bitness.h"
#include "dpinst/dpinst_config.h"
#include "dpinst/package_identity.h"
#include "platform_calls.h"

namespace {

using Calls = std::vector<std::string>;

// The calls that an action makes; all checks come after it, with the real platform back in place.
template <typename Action>
Calls CallsOf(const PlatformAnswers& answers, Action action) {
  const PlatformCalls calls(answers);
  action();
  return calls.Made();
}

PlatformAnswers Answers(void (*change)(PlatformAnswers&)) {
  PlatformAnswers answers;
  change(answers);
  return answers;
}

struct RunCase {
  const char* what;
  void (*change)(PlatformAnswers&);
  bool result;
  Calls calls;
};

// clang-format off
const std::string kAlloc = "HeapAlloc heap 0 23";
const std::string kCreate = "CreateProcessA null 'C:\\a folder\\dpinst.exe' in the block no security 0 0 own environment "
                            "null plain start zeroed result";
const std::string kLastError = "GetLastError";
const std::string kFormat = "FormatMessageA 1100 no source 2 400 0 no inserts";
const std::string kFreeText = "LocalFree text";
const std::string kWait = "WaitForSingleObject process forever";
const std::string kExitCode = "GetExitCodeProcess process";
const std::string kThreadCode = "GetExitCodeThread thread";
const std::string kCloseProcess = "CloseHandle process";
const std::string kCloseThread = "CloseHandle thread";
const std::string kFree = "HeapFree heap 0 block";

const RunCase kRunCases[] = {
    {"Normal", [](PlatformAnswers&) {}, true,
     {kAlloc, kCreate, kWait, kExitCode, kThreadCode, kCloseProcess, kCloseThread, kFree}},
    {"NoMemory", [](PlatformAnswers& answers) { answers.heapAlloc = false; }, false, {kAlloc}},
    {"NotStarted", [](PlatformAnswers& answers) { answers.createProcess = FALSE; }, true,
     {kAlloc, kCreate, kLastError, kFormat, kFreeText, kFree}},
    {"NotStartedAndNoText",
     [](PlatformAnswers& answers) { answers.createProcess = FALSE; answers.formatMessage = false; }, true,
     {kAlloc, kCreate, kLastError, kFormat, kFree}},
    {"WaitFailed", [](PlatformAnswers& answers) { answers.wait = WAIT_FAILED; }, true,
     {kAlloc, kCreate, kWait, kLastError, kFormat, kFreeText, kExitCode, kThreadCode, kCloseProcess, kCloseThread, kFree}},
    {"WaitAbandoned", [](PlatformAnswers& answers) { answers.wait = WAIT_ABANDONED; }, true,
     {kAlloc, kCreate, kWait, kLastError, kFormat, kFreeText, kExitCode, kThreadCode, kCloseProcess, kCloseThread, kFree}},
    {"NoExitCode", [](PlatformAnswers& answers) { answers.getExitCodeProcess = FALSE; }, true,
     {kAlloc, kCreate, kWait, kExitCode, kLastError, kFormat, kFreeText, kThreadCode, kCloseProcess, kCloseThread, kFree}},
};
// clang-format on

TEST(RunDpinst, GoesOnWhateverFails) {
  for (const RunCase& expected : kRunCases) {
    SCOPED_TRACE(expected.what);
    const PlatformAnswers answers = Answers(expected.change);
    bool result{};
    const Calls made = CallsOf(answers, [&] { result = kwa::RunDpinst("C:\\a folder\\dpinst.exe"); });
    EXPECT_EQ(result, expected.result);
    EXPECT_EQ(made, expected.calls);
  }
}

TEST(Is64BitWindows, BelievesAnythingButTheAnswerOf32BitWindows) {
  const Calls toModule = {"GetModuleHandleA 'kernel32.dll'"};
  const Calls toFunction = {toModule[0], "GetProcAddress kernel 'GetSystemWow64DirectoryW'"};
  const Calls toAnswer = {toFunction[0], toFunction[1], "GetSystemWow64DirectoryW 260"};
  const Calls toError = {toAnswer[0], toAnswer[1], toAnswer[2], "GetLastError"};
  const struct {
    const char* what;
    void (*change)(PlatformAnswers&);
    int result;
    Calls calls;
  } cases[] = {
      {"no module", [](PlatformAnswers& answers) { answers.kernelModule = false; }, 0, toModule},
      {"no function", [](PlatformAnswers& answers) { answers.wow64Function = false; }, 0, toFunction},
      {"a folder", [](PlatformAnswers& answers) { answers.wow64Length = 19; }, 1, toAnswer},
      {"32-bit", [](PlatformAnswers& answers) { answers.lastError = ERROR_CALL_NOT_IMPLEMENTED; }, 0, toError},
      {"another error", [](PlatformAnswers& answers) { answers.lastError = ERROR_ACCESS_DENIED; }, 1, toError},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.what);
    const PlatformAnswers answers = Answers(expected.change);
    int result{};
    const Calls made = CallsOf(answers, [&] { result = kwa::Is64BitWindows(); });
    EXPECT_EQ(result, expected.result);
    EXPECT_EQ(made, expected.calls);
  }
}

TEST(IsVistaOrLater, ComparesTheMajorVersion) {
  const struct {
    DWORD majorVersion;
    BOOL known;
    int result;
  } cases[] = {{0, FALSE, 0}, {4, TRUE, 0}, {5, TRUE, 0}, {6, TRUE, 1}, {10, TRUE, 1}, {0xFFFFFFFF, TRUE, 1}};
  for (const auto& expected : cases) {
    PlatformAnswers answers;
    answers.majorVersion = expected.majorVersion;
    answers.getVersion = expected.known;
    int result{};
    const Calls made = CallsOf(answers, [&] { result = kwa::IsVistaOrLater(); });
    EXPECT_EQ(result, expected.result) << expected.majorVersion;
    EXPECT_EQ(made, Calls{"GetVersionExA plain"});
  }
}

TEST(DeleteFolderTree, AsksTheShellOnce) {
  for (const int answer : {0, 2, 0x402}) {
    PlatformAnswers answers;
    answers.shFileOperation = answer;
    int result{};
    const Calls made = CallsOf(answers, [&] { result = kwa::DeleteFolderTree("C:\\temp\\kwa\0"); });
    EXPECT_EQ(result, answer == 0 ? 1 : 0);
    EXPECT_EQ(made, Calls{"SHFileOperationA 'C:\\temp\\kwa' 14 plain deletion"});
  }
}

// An invalid handle, the platform's word for no match, is none of the installer's business; a null one is.
TEST(ReadPackageIdentity, LeavesTheBuffersOnlyWithoutAHandle) {
  const Calls nothingFound = {"FindFirstFileA 'C:\\kwa\\*.inf'"};
  const Calls readAllTheSame = {nothingFound[0], "GetPrivateProfileStringA 'Version' 'DriverVer' '' 260 'C:\\kwa\\'",
                                "GetPrivateProfileStringA 'Version' 'DriverPackageDisplayName' '' 260 'C:\\kwa\\'",
                                "FindClose invalid"};
  const HANDLE searches[] = {nullptr, INVALID_HANDLE_VALUE};
  for (const HANDLE search : searches) {
    PlatformAnswers answers;
    answers.search = search;
    char version[kwa::kTextCapacity] = "version";
    char displayName[kwa::kTextCapacity] = "name";
    std::uint32_t result{};
    const Calls made = CallsOf(answers, [&] { result = kwa::ReadPackageIdentity("C:\\kwa\\", version, displayName); });
    EXPECT_EQ(result, 0U);
    EXPECT_STREQ(version, search == nullptr ? "version" : "");
    EXPECT_STREQ(displayName, search == nullptr ? "name" : "");
    EXPECT_EQ(made, search == nullptr ? nothingFound : readAllTheSame);
  }
}

}  // namespace
