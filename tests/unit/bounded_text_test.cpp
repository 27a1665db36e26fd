// The bounded copy and append: result, errno and every byte of the destination. The tests of whole runs count the lines
// that go to the debugger.

#include "support/bounded_text.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

// clang-format off
const struct {
  int (*function)(char*, std::size_t, const char*);
  const char* before;  // all 8 bytes of the destination; null: the destination itself is null
  std::size_t capacity;
  const char* source;
  int result;
  const char* after;  // all 8 bytes
} kCases[] = {
    {kwa::strcpy_s, "........",  8, "abc",   0,      "abc\0...."},
    {kwa::strcpy_s, "........",  4, "abc",   0,      "abc\0...."},
    {kwa::strcpy_s, "........",  4, "abcd",  ERANGE, "\0......."},
    {kwa::strcpy_s, nullptr,     8, "abc",   EINVAL, nullptr},
    {kwa::strcpy_s, "........",  0, "abc",   EINVAL, "........"},
    {kwa::strcpy_s, "........",  8, nullptr, EINVAL, "\0......."},
    {kwa::strcat_s, "ab\0.....", 8, "cd",    0,      "abcd\0..."},
    {kwa::strcat_s, "ab\0.....", 5, "cd",    0,      "abcd\0..."},
    {kwa::strcat_s, "ab\0.....", 5, "cde",   ERANGE, "\0b\0....."},
    {kwa::strcat_s, "abcd\0...", 4, "",      EINVAL, "\0bcd\0..."},
    {kwa::strcat_s, nullptr,     8, "abc",   EINVAL, nullptr},
    {kwa::strcat_s, "ab\0.....", 0, "abc",   EINVAL, "ab\0....."},
    {kwa::strcat_s, "ab\0.....", 8, nullptr, EINVAL, "\0b\0....."},
};
// clang-format on

TEST(Bounded, Text) {
  for (const auto& expected : kCases) {
    SCOPED_TRACE(&expected - kCases);
    std::string buffer = expected.before == nullptr ? "" : std::string(expected.before, 8);
    char* const destination = expected.before == nullptr ? nullptr : buffer.data();
    errno = 77;
    EXPECT_EQ(expected.function(destination, expected.capacity, expected.source), expected.result);
    EXPECT_EQ(errno, expected.result == 0 ? 77 : expected.result);
    EXPECT_EQ(buffer, expected.after == nullptr ? "" : std::string(expected.after, 8));
  }
}

}  // namespace
