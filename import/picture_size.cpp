#include "import/picture_size.h"

#include <charconv>
#include <fstream>
#include <string>

namespace TolmSDK::Graphics::sfg::materialx {

namespace {

constexpr std::size_t kMostBytes = 256 * 1024;
constexpr std::uint32_t kLargest = 1u << 20;

std::uint32_t byteAt(std::string_view bytes, std::size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
}
std::uint32_t bigEndian(std::string_view bytes, std::size_t at, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < count; ++i) value = value << 8 | byteAt(bytes, at + i);
  return value;
}
std::uint32_t littleEndian(std::string_view bytes, std::size_t at) {
  return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8 | byteAt(bytes, at + 2) << 16 |
         byteAt(bytes, at + 3) << 24;
}

std::optional<PictureSize> sized(std::uint32_t width, std::uint32_t height) {
  if (width == 0 || height == 0 || width > kLargest || height > kLargest) return std::nullopt;
  return PictureSize{width, height};
}

std::optional<PictureSize> sizeOfPng(std::string_view bytes) {
  if (bytes.size() < 24 || bytes.substr(12, 4) != "IHDR") return std::nullopt;
  return sized(bigEndian(bytes, 16, 4), bigEndian(bytes, 20, 4));
}

/// Goes from marker to marker as far as the frame header.
std::optional<PictureSize> sizeOfJpeg(std::string_view bytes) {
  std::size_t at = 2;
  while (at + 9 < bytes.size() && byteAt(bytes, at) == 0xff) {
    const std::uint32_t marker = byteAt(bytes, at + 1);
    if (marker == 0xff) {
      ++at;
      continue;
    }
    const bool isFrame =
        marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
    if (isFrame) return sized(bigEndian(bytes, at + 7, 2), bigEndian(bytes, at + 5, 2));
    at += 2 + bigEndian(bytes, at + 2, 2);
  }
  return std::nullopt;
}

/// An attribute is a name, a type, the size of its value, and the value.
std::optional<PictureSize> sizeOfExr(std::string_view bytes) {
  std::size_t at = 8;
  while (at < bytes.size() && bytes[at] != '\0') {
    const std::size_t nameEnd = bytes.find('\0', at);
    if (nameEnd == std::string_view::npos) break;
    const std::size_t typeEnd = bytes.find('\0', nameEnd + 1);
    if (typeEnd == std::string_view::npos || typeEnd + 21 > bytes.size()) break;
    const std::size_t value = typeEnd + 5;
    if (bytes.substr(at, nameEnd - at) == "dataWindow") {
      return sized(littleEndian(bytes, value + 8) - littleEndian(bytes, value) + 1,
                   littleEndian(bytes, value + 12) - littleEndian(bytes, value + 4) + 1);
    }
    at = value + littleEndian(bytes, typeEnd + 1);
  }
  return std::nullopt;
}

std::uint32_t numberBehind(std::string_view line, std::string_view key) {
  const std::size_t at = line.find(key);
  std::uint32_t number = 0;
  if (at != std::string_view::npos) {
    std::from_chars(line.data() + at + key.size(), line.data() + line.size(), number);
  }
  return number;
}

/// An empty line ends the header; the next one says the size, such as "-Y 512 +X 1024".
std::optional<PictureSize> sizeOfHdr(std::string_view bytes) {
  const std::size_t end = bytes.find("\n\n");
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view line = bytes.substr(end + 2, bytes.find('\n', end + 2) - end - 2);
  return sized(numberBehind(line, "X "), numberBehind(line, "Y "));
}

}  // namespace

std::optional<PictureSize> pictureSizeIn(std::string_view bytes) {
  if (bytes.starts_with("\x89PNG\r\n\x1a\n")) return sizeOfPng(bytes);
  if (bytes.starts_with("\xff\xd8")) return sizeOfJpeg(bytes);
  if (bytes.starts_with("\x76\x2f\x31\x01")) return sizeOfExr(bytes);
  if (bytes.starts_with("#?")) return sizeOfHdr(bytes);
  return std::nullopt;
}

std::optional<PictureSize> pictureSizeOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string bytes(kMostBytes, '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return pictureSizeIn(bytes);
}

}  // namespace TolmSDK::Graphics::sfg::materialx
