#pragma once

#include <string>
#include <tl/expected.hpp>
#include <utility>

namespace kwa {

// Why something cannot be read, or does not hold. Texts are raw: names in them may hold any byte.
struct Fault {
  std::string what;   // a phrase that follows the name of the thing, such as "ends within its headers"
  std::string code;   // the kind of fault for other programs, such as "name-empty"; "" where no finding reports it
  std::string where;  // the part of the thing, such as a name in an archive; "" for the thing as a whole
};

// What a reader of untrusted bytes returns: a whole value, or why there is none. (One day std::expected.)
template <typename T>
using Result = tl::expected<T, Fault>;

// Whether something holds, and otherwise why it does not.
using Check = Result<void>;

inline tl::unexpected<Fault> Failure(std::string what, std::string code = "", std::string where = "") {
  return tl::unexpected<Fault>({std::move(what), std::move(code), std::move(where)});
}

}  // namespace kwa
