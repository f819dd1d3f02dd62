#pragma once

// Numbers and texts as bytes, between processes of one program.

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

namespace TolmSDK::Graphics::sfg::host {

class ByteWriter {
public:
  ByteWriter& number(std::uint64_t value) {
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof(value));
    return *this;
  }
  ByteWriter& text(const std::string& value) {
    number(value.size());
    bytes_ += value;
    return *this;
  }
  std::string take() { return std::move(bytes_); }

private:
  std::string bytes_;
};

/// Of what a ByteWriter wrote, in the same order. The bytes live as long as the reader.
class ByteReader {
public:
  explicit ByteReader(const std::string& bytes) : bytes_(bytes) {}

  std::uint64_t number() {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes_.data() + at_, sizeof(value));
    at_ += sizeof(value);
    return value;
  }
  std::string text() {
    const std::size_t size = number();
    at_ += size;
    return bytes_.substr(at_ - size, size);
  }

private:
  const std::string& bytes_;
  std::size_t at_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg::host
