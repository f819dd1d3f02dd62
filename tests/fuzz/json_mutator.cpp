// Changes documents as documents: members left out, moved, doubled or called otherwise, values put in place
// of others, numbers made odd. A part between lines of five equals signs is a document of its own; one that
// is no JSON is changed by the byte.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity);

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kPartDivider = "\n=====\n";
/// Deeper documents are changed by the byte: writing one calls itself.
constexpr int kMaximumDepth = 200;

constexpr const char* kWords[] = {"name",           "type",        "value",
                                  "node",           "output",      "inputs",
                                  "fragment",       "graphInput",  "constant",
                                  "profiles",       "language",    "dx11",
                                  "implementation", "predefine",   "mode",
                                  "inline",         "metaSL",      "lod",
                                  "uniforms",       "includes",    "stateVariables",
                                  "ports",          "interface",   "lights",
                                  "profile",        "postprocess", "preprocess",
                                  "float3",         "sampler2D",   "struct",
                                  "{{a}}",          "sfg_light",   "",
                                  "float",          "a b",         "\n",
                                  "\xc3\xa4"};
constexpr double kNumbers[] = {0, -1, 1, 2, 0.5, 255, 65536, 2147483648.0, 1e9, 1e-30, 1e300, -0.0};

class Mutator {
public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  void change(Json& document) {
    std::vector<Json*> places;
    collect(document, places);
    Json& place = *places[below(places.size())];
    const Json other = *places[below(places.size())];
    switch (below(8)) {
    case 0: place = other; break;
    case 1: place = word(); break;
    case 2: place = kNumbers[below(std::size(kNumbers))]; break;
    case 3: changeText(place); break;
    case 4: drop(place); break;
    case 5: add(place, other); break;
    case 6: rename(place); break;
    default: swap(place); break;
    }
  }

private:
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
  std::string word() { return kWords[below(std::size(kWords))]; }

  static void collect(Json& value, std::vector<Json*>& places) {
    places.push_back(&value);
    if (!value.is_structured()) return;
    for (Json& child : value) collect(child, places);
  }

  void changeText(Json& place) {
    if (!place.is_string()) {
      place = Json::array({place});
      return;
    }
    std::string text = place.get<std::string>();
    const std::size_t size = text.size();
    text.resize(size + 16);
    text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, text.size()));
    place = text;
  }

  void drop(Json& place) {
    if (!place.is_structured() || place.empty()) {
      place = nullptr;
    } else if (place.is_array()) {
      place.erase(below(place.size()));
    } else {
      place.erase(std::next(place.begin(), static_cast<std::ptrdiff_t>(below(place.size()))).key());
    }
  }

  void add(Json& place, const Json& other) {
    if (place.is_array()) {
      place.insert(place.begin() + static_cast<std::ptrdiff_t>(below(place.size() + 1)), other);
    } else if (place.is_object()) {
      place[word()] = other;
    } else {
      place = Json::object({{word(), place}});
    }
  }

  void rename(Json& place) {
    if (!place.is_object() || place.empty()) return add(place, place);
    const std::size_t chosen = below(place.size());
    Json renamed = Json::object();
    std::size_t index = 0;
    for (const auto& [name, value] : place.items()) renamed[index++ == chosen ? word() : name] = value;
    place = std::move(renamed);
  }

  void swap(Json& place) {
    if (!place.is_structured() || place.size() < 2) return drop(place);
    const auto at = [&](std::size_t index) {
      return std::next(place.begin(), static_cast<std::ptrdiff_t>(index));
    };
    Json& first = *at(below(place.size()));
    Json& second = *at(below(place.size()));
    if (&first != &second) std::swap(first, second);
  }

  std::mt19937 random_;
};

int depthOf(std::string_view text) {
  int depth = 0;
  int deepest = 0;
  for (const char byte : text) {
    if (byte == '{' || byte == '[') deepest = std::max(deepest, ++depth);
    if (byte == '}' || byte == ']') --depth;
  }
  return deepest;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t capacity,
                                               unsigned seed) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::mt19937 random(seed);
  // One of the parts.
  std::vector<std::size_t> starts = {0};
  for (std::size_t at = text.find(kPartDivider); at != std::string::npos;
       at = text.find(kPartDivider, at + 1))
    starts.push_back(at + kPartDivider.size());
  const std::size_t begin = starts[random() % starts.size()];
  const std::size_t end = std::min(text.find(kPartDivider, begin), text.size());
  const std::string_view part = std::string_view(text).substr(begin, end - begin);

  Json document;
  if (random() % 4 != 0 && depthOf(part) < kMaximumDepth) document = Json::parse(part, nullptr, false);
  if (!document.is_structured()) return LLVMFuzzerMutate(data, size, capacity);
  Mutator mutator(seed);
  for (unsigned long changes = 1 + random() % 3; changes > 0; --changes) mutator.change(document);
  std::string changed = text.substr(0, begin);
  changed += document.dump(random() % 2 == 0 ? -1 : 1, ' ', false, Json::error_handler_t::replace);
  changed += text.substr(end);
  if (changed.size() > capacity) return LLVMFuzzerMutate(data, size, capacity);
  std::memcpy(data, changed.data(), changed.size());
  return changed.size();
}
