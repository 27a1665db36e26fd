#include "der.h"

#include <openssl/objects.h>

#include <memory>

namespace kwa {

std::string Der(int tag, const std::string& content) {
  unsigned char header[16];
  unsigned char* end = header;
  ASN1_put_object(&end, tag & V_ASN1_CONSTRUCTED, static_cast<int>(content.size()), tag & V_ASN1_PRIMITIVE_TAG,
                  tag & V_ASN1_PRIVATE);
  return std::string(header, end) + content;
}

std::string DerObjectId(const char* dotted) {
  const std::shared_ptr<ASN1_OBJECT> object(ObjectId(dotted), ASN1_OBJECT_free);
  const unsigned char* const bytes = OBJ_get0_data(object.get());
  return Der(V_ASN1_OBJECT, std::string(bytes, bytes + OBJ_length(object.get())));
}

std::string DerAttribute(const char* type, const std::string& values) {
  return Der(kDerSequence, DerObjectId(type) + Der(kDerSet, values));
}

ASN1_OBJECT* ObjectId(const char* dotted) {
  ASN1_OBJECT* const object = OBJ_txt2obj(dotted, 1);
  Require(object != nullptr);
  return object;
}

}  // namespace kwa
