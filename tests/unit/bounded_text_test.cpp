// The bounded copy and append: result, errno, every byte of the destination, and the line to the debugger.

#include "support/bounded_text.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <ostream>

#include "debugger_lines.h"

namespace {

constexpr std::size_t kBufferSize = 8;

enum class Operation { Copy, Append };

struct BoundedCase {
  const char* what;
  Operation operation;
  const char* before;  // all 8 bytes of the destination; null: the destination itself is null
  std::size_t capacity;
  const char* source;
  int result;
  const char* after;  // all 8 bytes
};

std::ostream& operator<<(std::ostream& stream, const BoundedCase& boundedCase) {
  return stream << boundedCase.what;
}

// clang-format off
const BoundedCase kCases[] = {
    {"CopyFits",              Operation::Copy,   "........",    8, "abc",     0,      "abc\0...."},
    {"CopyEmpty",             Operation::Copy,   "........",    8, "",        0,      "\0......."},
    {"CopyFillsCapacity",     Operation::Copy,   "........",    4, "abc",     0,      "abc\0...."},
    {"CopyOneTooLong",        Operation::Copy,   "........",    4, "abcd",    ERANGE, "\0......."},
    {"CopyEmptyIntoOne",      Operation::Copy,   "........",    1, "",        0,      "\0......."},
    {"CopyIntoOne",           Operation::Copy,   "........",    1, "a",       ERANGE, "\0......."},
    {"CopyNullDestination",   Operation::Copy,   nullptr,       8, "abc",     EINVAL, nullptr},
    {"CopyNoCapacity",        Operation::Copy,   "........",    0, "abc",     EINVAL, "........"},
    {"CopyNullSource",        Operation::Copy,   "........",    8, nullptr,   EINVAL, "\0......."},
    {"CopyBothNull",          Operation::Copy,   nullptr,       0, nullptr,   EINVAL, nullptr},
    {"AppendFits",            Operation::Append, "ab\0.....",   8, "cd",      0,      "abcd\0..."},
    {"AppendNothing",         Operation::Append, "ab\0.....",   8, "",        0,      "ab\0....."},
    {"AppendToEmpty",         Operation::Append, "\0.......",   8, "abc",     0,      "abc\0...."},
    {"AppendFillsCapacity",   Operation::Append, "ab\0.....",   5, "cd",      0,      "abcd\0..."},
    {"AppendOneTooLong",      Operation::Append, "ab\0.....",   5, "cde",     ERANGE, "\0b\0....."},
    {"AppendNothingToFull",   Operation::Append, "abcd\0...",   5, "",        0,      "abcd\0..."},
    {"AppendToFull",          Operation::Append, "abcd\0...",   5, "e",       ERANGE, "\0bcd\0..."},
    {"AppendUnterminated",    Operation::Append, "abcdefgh",    4, "x",       EINVAL, "\0bcdefgh"},
    {"AppendEndsBehind",      Operation::Append, "abcd\0...",   4, "",        EINVAL, "\0bcd\0..."},
    {"AppendNullDestination", Operation::Append, nullptr,       8, "abc",     EINVAL, nullptr},
    {"AppendNoCapacity",      Operation::Append, "ab\0.....",   0, "abc",     EINVAL, "ab\0....."},
    {"AppendNullSource",      Operation::Append, "ab\0.....",   8, nullptr,   EINVAL, "\0b\0....."},
};
// clang-format on

class Bounded : public testing::TestWithParam<BoundedCase> {};

TEST_P(Bounded, Text) {
  const BoundedCase& expected = GetParam();
  char buffer[kBufferSize] = {};
  char* destination = nullptr;
  if (expected.before != nullptr) {
    destination = buffer;
    std::memcpy(buffer, expected.before, kBufferSize);
  }
  constexpr int kUntouched = 77;
  errno = kUntouched;
  int result = 0;
  {
    const DebuggerLines collector;
    result = (expected.operation == Operation::Copy ? kwa::strcpy_s : kwa::strcat_s)(destination, expected.capacity,
                                                                                     expected.source);
  }
  EXPECT_EQ(result, expected.result);
  EXPECT_EQ(errno, expected.result == 0 ? kUntouched : expected.result);
  if (expected.after != nullptr) {
    EXPECT_EQ(std::memcmp(buffer, expected.after, kBufferSize), 0) << std::string(buffer, kBufferSize);
  }
  const std::vector<std::string> line = {"Invalid parameter passed to C runtime function.\n"};
  EXPECT_EQ(DebuggerLines::Lines(), expected.result == 0 ? std::vector<std::string>() : line);
}

// cppcheck-suppress syntaxError // it does not know an empty argument of a macro
INSTANTIATE_TEST_SUITE_P(, Bounded, testing::ValuesIn(kCases),
                         [](const auto& test) { return std::string(test.param.what); });

// The capacity of every path in the installer.
TEST(AppendPath, HoldsWhatFitsIn260Bytes) {
  char path[kwa::kTextCapacity] = {};
  kwa::AppendPath(path, std::string(259, 'x').c_str());
  EXPECT_EQ(std::string(path), std::string(259, 'x'));
  kwa::AppendPath(path, "y");
  EXPECT_EQ(std::string(path), "");
  kwa::AppendPath(path, std::string(260, 'x').c_str());
  EXPECT_EQ(std::string(path), "");
}

}  // namespace
