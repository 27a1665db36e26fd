#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

// Whether two documents are the same, byte for byte. The message of a failure has the first line that differs, and not
// the documents: EXPECT_TRUE(SameText(actual, expected)).
inline testing::AssertionResult SameText(const std::string& actual, const std::string& expected) {
  if (actual == expected) {
    return testing::AssertionSuccess();
  }
  const auto difference = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end()).first;
  const std::size_t at = static_cast<std::size_t>(difference - actual.begin());
  const auto number = 1 + std::count(actual.begin(), difference, '\n');
  const std::size_t start = at == 0 ? 0 : actual.rfind('\n', at - 1) + 1;
  const auto line = [start](const std::string& text) {
    return testing::PrintToString(text.substr(start, text.find('\n', start) - start));
  };
  return testing::AssertionFailure() << "line " << number << " is the first that differs\n  actual:   " << line(actual)
                                     << "\n  expected: " << line(expected);
}
