#include <exception>
#include <new>

// How the standard containers raise their errors. libstdc++ keeps these functions with all others of their kind, and
// linking any one of them brings every exception that carries a text and both kinds of std::string: 94 KB. This program
// catches nothing, so a std::length_error comes to terminate without anything else happening on the way; the one here
// goes there directly. An optimising compiler asks for that one only, the others complete the set. Only the executable
// is linked with them: to the tests of the same code the error is an exception like any other.
//
// Should a library want more of the set, the linker says that these are defined twice: then this file can simply go.
// NOLINTBEGIN(*-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl58-cpp): the library's names
namespace std {

[[noreturn]] void __throw_length_error(const char* /*text*/) {
  terminate();
}

[[noreturn]] void __throw_bad_alloc() {
  throw bad_alloc();
}

[[noreturn]] void __throw_bad_array_new_length() {
  throw bad_array_new_length();
}

}  // namespace std
// NOLINTEND(*-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,cert-dcl58-cpp)
