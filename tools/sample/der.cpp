#include "der.h"

#include <openssl/objects.h>

#include <memory>

namespace kwa {

std::string Der(const void* value, const ASN1_ITEM* item) {
  unsigned char* bytes = nullptr;
  const int size = ASN1_item_i2d(static_cast<const ASN1_VALUE*>(value), &bytes, item);
  Require(size > 0);
  const std::unique_ptr<unsigned char, void (*)(unsigned char*)> owned(
      bytes, [](unsigned char* memory) { OPENSSL_free(memory); });
  return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

ASN1_OBJECT* ObjectId(const char* dotted) {
  ASN1_OBJECT* const object = OBJ_txt2obj(dotted, 1);
  Require(object != nullptr);
  return object;
}

ASN1_STRING* StringOf(int type, const std::string& bytes) {
  ASN1_STRING* const string = ASN1_STRING_type_new(type);
  Require(string != nullptr && ASN1_STRING_set(string, bytes.data(), static_cast<int>(bytes.size())) == 1);
  return string;
}

}  // namespace kwa
