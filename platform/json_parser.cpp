// RapidJSON reads. What it refuses goes to a slower parser, which says what is wrong and where.

#include <rapidjson/reader.h>

#include <cstdlib>
#include <new>
#include <string_view>
#include <utility>

#include "platform/json_builder.h"
#include "platform/json_errors.h"
#include "platform/utf.h"

namespace TolmSDK::json {

namespace {

/// Hands the parser's events to the builder, which reads numbers and places from the text itself.
class Handler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Handler> {
public:
  using Length = rapidjson::SizeType;

  explicit Handler(Builder& builder) : builder_(builder) {}

  bool Null() { return builder_.null(); }
  bool Bool(bool value) { return builder_.boolean(value); }
  bool RawNumber(const char*, Length, bool) { return builder_.number(); }
  bool String(const char* text, Length length, bool) { return builder_.string({text, length}); }
  bool StartObject() { return builder_.open(NodeKind::object); }
  bool Key(const char* text, Length length, bool) { return builder_.key({text, length}); }
  bool EndObject(Length) { return builder_.endObject(); }
  bool StartArray() { return builder_.open(NodeKind::array); }
  bool EndArray(Length) { return builder_.endArray(); }

private:
  Builder& builder_;
};

/// RapidJSON takes whatever its own allocator answers for memory; this one throws.
class ThrowingAllocator {
public:
  [[maybe_unused]] static constexpr bool kNeedFree = true;

  void* Malloc(std::size_t size) { return size != 0 ? required(std::malloc(size)) : nullptr; }
  void* Realloc(void* memory, std::size_t, std::size_t size) {
    if (size != 0) return required(std::realloc(memory, size));
    Free(memory);
    return nullptr;
  }
  static void Free(void* memory) noexcept { std::free(memory); }

private:
  static void* required(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
  }
};

/// The builder limits the depth of the nesting, and so the parser's recursion.
bool parse(const std::string& text, Builder& builder) {
  ThrowingAllocator allocator;
  rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator> reader(&allocator);
  rapidjson::StringStream input(text.c_str());
  Handler handler(builder);
  return !reader.Parse<rapidjson::kParseNumbersAsStringsFlag>(input, handler).IsError() && builder.end();
}

}  // namespace

RefPtr<Document> parseDocument(std::string bytes, WString& error) {
  // Ill-formed UTF-8 is replaced as in every text file; most texts are fine.
  if (!isUtf8(bytes)) bytes = repairedUtf8(bytes);

  RefPtr<Document> document = makeRef<Document>(std::move(bytes));
  Builder builder(*document);
  if (parse(document->text(), builder)) return document;
  error = builder.error();
  if (!error.empty()) return nullptr;

  Builder explained(*document);
  if (parseWithErrors(document->text(), explained)) return document;
  error = explained.error();
  return nullptr;
}

}  // namespace TolmSDK::json
