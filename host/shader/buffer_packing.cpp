// Contents of constant buffers from values.

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "host/documents/near_name.h"
#include "host/shader/number_shape.h"
#include "sfg/host/reflect.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::string ticked(const std::string& text) { return "`" + text + "`"; }

/// A number, or array of numbers, of a buffer.
struct Slot {
  std::string path;  ///< "node.input.part"
  std::string name;  ///< in the shader, with its parts
  const InterfaceMember* member = nullptr;
  std::size_t offset = 0;
};

void collect(std::vector<Slot>& slots, const InterfaceMember& member, const Slot& at) {
  if (member.members.empty()) slots.push_back(at);
  for (const InterfaceMember& part : member.members) {
    collect(slots, part,
            {at.path + "." + part.name, at.name + "." + part.name, &part, at.offset + part.offset});
  }
}

std::vector<Slot> slotsOf(const InterfaceBuffer& buffer) {
  std::vector<Slot> slots;
  for (const InterfaceMember& member : buffer.members) {
    const bool hasOrigin = !member.origin.kind.empty();
    collect(slots, member,
            {hasOrigin ? member.origin.path() : member.name, member.name, &member, member.offset});
  }
  return slots;
}

const char* scalarName(NumberShape::Scalar scalar) {
  switch (scalar) {
  case NumberShape::Scalar::floating: return "a 32-bit float";
  case NumberShape::Scalar::integer: return "an integer of 32 bits";
  case NumberShape::Scalar::unsignedInteger: return "an integer of 32 bits without a sign";
  case NumberShape::Scalar::boolean: break;
  }
  return "`true`, `false`, 1 or 0";
}

/// The bits of the number, or nothing when the type cannot hold it.
std::optional<std::uint32_t> bitsOf(double number, NumberShape::Scalar scalar) {
  const bool isWhole = std::trunc(number) == number;
  const auto within = [&](double low, double high) { return isWhole && number >= low && number <= high; };
  switch (scalar) {
  case NumberShape::Scalar::floating: {
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) return std::nullopt;
    if (std::isnan(number)) return std::nullopt;
    return std::bit_cast<std::uint32_t>(static_cast<float>(number));
  }
  case NumberShape::Scalar::integer:
    if (!within(-2147483648.0, 2147483647.0)) return std::nullopt;
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(number));
  case NumberShape::Scalar::unsignedInteger:
    if (!within(0.0, 4294967295.0)) return std::nullopt;
    return static_cast<std::uint32_t>(number);
  case NumberShape::Scalar::boolean: break;
  }
  if (!within(0.0, 1.0)) return std::nullopt;
  return static_cast<std::uint32_t>(number);
}

class Packer {
public:
  explicit Packer(const InterfaceBuffer& buffer) : slots_(slotsOf(buffer)), bytes_(buffer.size) {
    for (const Slot& slot : slots_) {
      byName_.try_emplace(slot.name, &slot);
      const auto [found, isNew] = byPath_.try_emplace(slot.path, SlotsOfPath{&slot, nullptr});
      if (!isNew && found->second.second == nullptr) found->second.second = &slot;
    }
  }

  void writeStart() {
    for (const Slot& slot : slots_) {
      if (!slot.member->value.empty()) write(slot, slot.member->value);
    }
  }

  void set(const ValueSetting& setting) { write(find(setting.name), setting.numbers); }

  std::vector<std::uint8_t> take() { return std::move(bytes_); }

private:
  const Slot& find(const std::string& name) const {
    if (const auto named = byName_.find(name); named != byName_.end()) return *named->second;
    if (const auto found = byPath_.find(name); found != byPath_.end()) {
      const auto [first, second] = found->second;
      if (second == nullptr) return *first;
      throw PackError(ticked(name) + " is two values: " + ticked(first->name) + " and " +
                      ticked(second->name));
    }
    std::vector<std::string> known;
    for (const Slot& slot : slots_) known.push_back(slot.path);
    throw PackError("no value is called " + ticked(name) + knownNamesHint(name, known));
  }

  void write(const Slot& slot, const std::vector<double>& numbers) {
    const std::optional<NumberShape> shape = numberShapeOf(slot.member->type);
    if (!shape)
      throw PackError(ticked(slot.path) + " is of type " + ticked(slot.member->type) + ", no number");
    const std::size_t elements = std::max<std::size_t>(slot.member->arrayLength, 1);
    const std::size_t count = shape->count();
    if (numbers.size() % count != 0 || numbers.size() / count != elements) {
      const std::string length =
          slot.member->arrayLength == 0 ? "" : "[" + std::to_string(slot.member->arrayLength) + "]";
      throw PackError(ticked(slot.path) + " is of type " + ticked(slot.member->type + length) + ": " +
                      std::to_string(elements * count) + " numbers, not " + std::to_string(numbers.size()));
    }
    std::size_t next = 0;
    for (std::size_t element = 0; element < elements; ++element) {
      const std::size_t start = slot.offset + element * slot.member->arrayStride;
      for (std::size_t row = 0; row < shape->rows; ++row) {
        for (std::size_t column = 0; column < shape->columns; ++column) {
          const std::size_t within =
              shape->isMatrix ? column * slot.member->matrixStride + row * kComponent : column * kComponent;
          writeNumber(slot, start + within, numbers[next++], shape->scalar);
        }
      }
    }
  }

  void writeNumber(const Slot& slot, std::size_t offset, double number, NumberShape::Scalar scalar) {
    const std::optional<std::uint32_t> bits = bitsOf(number, scalar);
    if (!bits) throw PackError("a number of " + ticked(slot.path) + " is not " + scalarName(scalar));
    if (bytes_.size() < kComponent || offset > bytes_.size() - kComponent)
      throw PackError(ticked(slot.path) + " lies outside its buffer");
    for (std::size_t i = 0; i < kComponent; ++i) {
      bytes_[offset + i] = static_cast<std::uint8_t>((*bits >> (8 * i)) & 0xffu);
    }
  }

  /// The first two slots that have a path.
  struct SlotsOfPath {
    const Slot* first = nullptr;
    const Slot* second = nullptr;
  };

  const std::vector<Slot> slots_;
  std::unordered_map<std::string_view, const Slot*> byName_;
  std::unordered_map<std::string_view, SlotsOfPath> byPath_;
  std::vector<std::uint8_t> bytes_;
};

double parseNumber(const std::string& text, const std::string& whole) {
  if (text == "true") return 1.0;
  if (text == "false") return 0.0;
  double number = 0.0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || !std::isfinite(number)) {
    throw PackError(ticked(text) + " in " + ticked(whole) + " is no number");
  }
  return number;
}

}  // namespace

const InterfaceBuffer& findBuffer(const ShaderInterface& shader, const std::string& name) {
  std::vector<std::string> names;
  for (const InterfaceBuffer& buffer : shader.buffers) {
    if (buffer.name == name) return buffer;
    names.push_back(buffer.name);
  }
  throw PackError("the shader has no buffer " + ticked(name) + knownNamesHint(name, names));
}

std::vector<std::uint8_t> packBuffer(const InterfaceBuffer& buffer,
                                     const std::vector<ValueSetting>& settings) {
  if (buffer.kind != InterfaceBuffer::Kind::constant) {
    throw PackError(ticked(buffer.name) + " is no constant buffer");
  }
  if (!buffer.isComplete) {
    throw PackError("the layout of " + ticked(buffer.name) + " is not known: a structure cannot be read");
  }
  Packer packer(buffer);
  packer.writeStart();
  for (const ValueSetting& setting : settings) packer.set(setting);
  return packer.take();
}

ValueSetting parseSetting(const std::string& text) {
  const std::size_t equals = text.rfind('=');
  if (equals == text.npos || equals == 0) throw PackError(ticked(text) + " is not of the form `name=value`");
  ValueSetting setting{text.substr(0, equals), {}};
  for (std::size_t start = equals + 1; start <= text.size();) {
    const std::size_t end = std::min(text.find(',', start), text.size());
    setting.numbers.push_back(parseNumber(text.substr(start, end - start), text));
    start = end + 1;
  }
  return setting;
}

}  // namespace TolmSDK::Graphics::sfg::host
