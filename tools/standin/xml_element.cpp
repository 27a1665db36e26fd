#include "xml_element.h"

#include <windows.h>

#include <msxml2.h>
#include <shlwapi.h>

#include <memory>
#include <stdexcept>

#include "platform.h"

namespace kwa {
namespace {

// The SAX reader of MSXML. Under Wine, unlike the document object, it reports line and reason, and unlike XmlLite, it
// refuses duplicate attributes and a bare ampersand. No import library of MinGW-w64 has these identifiers.
constexpr CLSID kReaderClass = {0x079aa557, 0x4a18, 0x424a, {0x8e, 0xee, 0xe3, 0x9f, 0x0a, 0x8d, 0x41, 0xb9}};
constexpr IID kReaderInterface = {0xa4f96ed0, 0xf829, 0x476e, {0x81, 0xc0, 0xcd, 0xc7, 0xbd, 0x2a, 0x08, 0x02}};

struct ReleaseInterface {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <class T>
using Interface = std::unique_ptr<T, ReleaseInterface>;

// An object on the stack, so it counts no references.
template <class T>
struct Handler : T {
  HRESULT WINAPI QueryInterface(REFIID /*id*/, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG WINAPI AddRef() override { return 1; }
  ULONG WINAPI Release() override { return 1; }
};

using Text = const WCHAR*;

std::wstring String(Text text, int length) {
  return {text, static_cast<std::size_t>(length)};
}

class TreeBuilder final : public Handler<ISAXContentHandler> {
 public:
  XmlElement root;

  HRESULT WINAPI startElement(Text, int, Text, int, Text name, int length, ISAXAttributes* attributes) override {
    XmlElement& element = open.empty() ? root : open.back()->children.emplace_back();
    element.name = String(name, length);
    int count = 0;
    attributes->getLength(&count);
    for (int i = 0; i < count; ++i) {
      Text key = nullptr;
      Text value = nullptr;
      int keyLength = 0;
      int valueLength = 0;
      attributes->getQName(i, &key, &keyLength);
      attributes->getValue(i, &value, &valueLength);
      element.attributes[String(key, keyLength)] = String(value, valueLength);
    }
    open.push_back(&element);
    return S_OK;
  }
  HRESULT WINAPI endElement(Text, int, Text, int, Text, int) override {
    open.pop_back();
    return S_OK;
  }
  HRESULT WINAPI characters(Text text, int length) override {
    open.back()->text += String(text, length);
    return S_OK;
  }
  HRESULT WINAPI putDocumentLocator(ISAXLocator*) override { return S_OK; }
  HRESULT WINAPI startDocument() override { return S_OK; }
  HRESULT WINAPI endDocument() override { return S_OK; }
  HRESULT WINAPI startPrefixMapping(Text, int, Text, int) override { return S_OK; }
  HRESULT WINAPI endPrefixMapping(Text, int) override { return S_OK; }
  HRESULT WINAPI ignorableWhitespace(Text, int) override { return S_OK; }
  HRESULT WINAPI processingInstruction(Text, int, Text, int) override { return S_OK; }
  HRESULT WINAPI skippedEntity(Text, int) override { return S_OK; }

 private:
  std::vector<XmlElement*> open;  // the elements that have not ended, from the root to the innermost
};

class FirstError final : public Handler<ISAXErrorHandler> {
 public:
  std::wstring message;

  HRESULT WINAPI fatalError(ISAXLocator* locator, Text reason, HRESULT /*code*/) override {
    if (message.empty()) {
      int line = 0;
      locator->getLineNumber(&line);
      const std::wstring text = reason;
      message = L"line " + std::to_wstring(line) + L": " + text.substr(0, text.find_first_of(L"\r\n"));
    }
    return S_OK;
  }
  HRESULT WINAPI error(ISAXLocator* locator, Text reason, HRESULT code) override {
    return fatalError(locator, reason, code);
  }
  HRESULT WINAPI ignorableWarning(ISAXLocator*, Text, HRESULT) override { return S_OK; }
};

}  // namespace

const XmlElement* XmlElement::Child(const wchar_t* childName) const {
  for (const XmlElement& child : children) {
    if (child.name == childName) {
      return &child;
    }
  }
  return nullptr;
}

XmlElement ReadXmlFile(const std::wstring& path) {
  IStream* opened = nullptr;
  if (FAILED(SHCreateStreamOnFileW(path.c_str(), STGM_READ | STGM_SHARE_DENY_WRITE, &opened))) {
    return {};
  }
  const Interface<IStream> stream(opened);
  void* created = nullptr;
  if (FAILED(CoCreateInstance(kReaderClass, nullptr, CLSCTX_INPROC_SERVER, kReaderInterface, &created))) {
    throw std::runtime_error("this Windows has no MSXML");
  }
  const Interface<ISAXXMLReader> reader(static_cast<ISAXXMLReader*>(created));
  TreeBuilder builder;
  FirstError firstError;
  reader->putContentHandler(&builder);
  reader->putErrorHandler(&firstError);
  VARIANT input = {};
  input.vt = VT_UNKNOWN;
  input.punkVal = stream.get();
  const HRESULT result = reader->parse(input);
  if (FAILED(result) || !firstError.message.empty()) {
    const std::wstring name = path.substr(path.rfind(L'\\') + 1);
    throw std::runtime_error(ToUtf8(name + L", " + firstError.message));
  }
  return builder.root;
}

}  // namespace kwa
