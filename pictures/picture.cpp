#include "pictures/picture.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfIO.h>
#include <ImfOutputFile.h>
#include <ImfRgbaFile.h>
#include <ImfStdIO.h>
#include <png.h>
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace pictures {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int kLargest = 16384;  ///< texels along a side

std::runtime_error unreadable(const std::filesystem::path& file, const std::string& why) {
  return std::runtime_error("cannot read `" + file.string() + "`: " + why);
}

Bytes readFile(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) throw unreadable(file, "it is a folder");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw unreadable(file, "there is no such file, or it may not be read");
  return {std::istreambuf_iterator<char>(stream), {}};
}

template <class Texel>
Picture fromTexels(const Texel* texels, int width, int height, float one) {
  Picture picture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
  std::transform(texels, texels + picture.texels.size(), picture.texels.begin(),
                 [one](Texel value) { return static_cast<float>(value) / one; });
  return picture;
}

/// From memory, so that the bytes looked at are the bytes read.
Picture readCommon(const std::filesystem::path& file, const Bytes& bytes) {
  const auto size = static_cast<int>(bytes.size());
  int width = 0;
  int height = 0;
  int channels = 0;
  if (stbi_is_hdr_from_memory(bytes.data(), size) != 0) {
    const std::unique_ptr<float, void (*)(void*)> read(
        stbi_loadf_from_memory(bytes.data(), size, &width, &height, &channels, 4), stbi_image_free);
    if (!read) throw unreadable(file, stbi_failure_reason());
    return fromTexels(read.get(), width, height, 1);
  }
  const std::unique_ptr<std::uint16_t, void (*)(void*)> read(
      stbi_load_16_from_memory(bytes.data(), size, &width, &height, &channels, 4), stbi_image_free);
  if (!read)
    throw unreadable(file, std::string(stbi_failure_reason()) + " (PNG, JPEG, HDR and EXR can be read)");
  Picture picture = fromTexels(read.get(), width, height, 65535);
  picture.isEncoded = true;
  return picture;
}

Picture readExr(const std::filesystem::path& file) try {
  Imf::RgbaInputFile input(file.c_str(), 1);
  const Imath::Box2i window = input.dataWindow();
  const auto width = static_cast<std::int64_t>(window.max.x) - window.min.x + 1;
  const auto height = static_cast<std::int64_t>(window.max.y) - window.min.y + 1;
  if (width > kLargest || height > kLargest) throw std::runtime_error("it is too large");
  Picture picture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
  // A row at a time into the same place.
  std::vector<Imf::Rgba> row(static_cast<std::size_t>(width));
  for (int y = window.min.y; y <= window.max.y; ++y) {
    input.setFrameBuffer(row.data() - window.min.x, 1, 0);
    input.readPixels(y);
    float* to = picture.at(0, static_cast<std::size_t>(y - window.min.y));
    for (const Imf::Rgba& texel : row) {
      for (const half value : {texel.r, texel.g, texel.b, texel.a}) *to++ = value;
    }
  }
  return picture;
} catch (const std::exception& error) {
  throw unreadable(file, error.what());
}

std::string writeExr(const Picture& picture) {
  Imf::Header header(static_cast<int>(picture.width), static_cast<int>(picture.height));
  Imf::FrameBuffer frame;
  const char* const names[] = {"R", "G", "B", "A"};
  for (std::size_t i = 0; i < 4; ++i) {
    header.channels().insert(names[i], Imf::Channel(Imf::FLOAT));
    // The library's interface for reading and writing is one, so it takes no constant memory.
    auto* const start = reinterpret_cast<char*>(const_cast<float*>(&picture.texels[i]));
    frame.insert(names[i],
                 Imf::Slice(Imf::FLOAT, start, 4 * sizeof(float), 4 * sizeof(float) * picture.width));
  }
  Imf::StdOSStream stream;
  {
    Imf::OutputFile file(stream, header, 1);
    file.setFrameBuffer(frame);
    file.writePixels(static_cast<int>(picture.height));
  }
  return stream.str();
}

std::string writeHdr(Picture picture) {
  for (float& value : picture.texels) value = value > 0 ? std::min(value, 1e38f) : 0;
  std::string bytes;
  stbi_write_hdr_to_func(
      [](void* to, void* data, int size) {
        static_cast<std::string*>(to)->append(static_cast<const char*>(data), static_cast<std::size_t>(size));
      },
      &bytes, static_cast<int>(picture.width), static_cast<int>(picture.height), 4, picture.texels.data());
  return bytes;
}

std::string writePng(const Picture& picture) {
  Bytes bytes(picture.texels.size());
  std::transform(picture.texels.begin(), picture.texels.end(), bytes.begin(), [](float value) {
    return static_cast<std::uint8_t>(std::lround(value > 0 ? 255 * std::min(value, 1.0f) : 0.0f));
  });
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = picture.width;
  image.height = picture.height;
  image.format = PNG_FORMAT_RGBA;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string written(size, '\0');
  if (png_image_write_to_memory(&image, written.data(), &size, 0, bytes.data(), 0, nullptr) == 0)
    throw std::runtime_error(std::string("a PNG cannot be written: ") + image.message);
  written.resize(size);
  return written;
}

std::string bigEndian(std::uint32_t value, int bytes = 4) {
  std::string text;
  for (int i = bytes - 1; i >= 0; --i) text += static_cast<char>(value >> (8 * i) & 0xff);
  return text;
}

std::string chunk(const std::string& type, const std::string& data) {
  const std::string summed = type + data;
  const auto sum = crc32(0, reinterpret_cast<const Bytef*>(summed.data()), static_cast<uInt>(summed.size()));
  std::string written = bigEndian(static_cast<std::uint32_t>(data.size()));
  written += summed;
  written += bigEndian(static_cast<std::uint32_t>(sum));
  return written;
}

/// The data of the chunks of that type, one behind the other.
std::string chunksOf(const std::string& png, const std::string& type) {
  std::string found;
  for (std::size_t at = 8; at + 12 <= png.size();) {
    std::size_t size = 0;
    for (std::size_t i = 0; i < 4; ++i) size = size << 8 | static_cast<std::uint8_t>(png[at + i]);
    if (png.compare(at + 4, 4, type) == 0) found += png.substr(at + 8, size);
    at += size + 12;
  }
  return found;
}

template <class Change>
Picture changed(Picture picture, const Change& change) {
  for (std::size_t i = 0; i < picture.texels.size(); ++i) {
    if (i % 4 != 3) picture.texels[i] = change(picture.texels[i]);
  }
  picture.isEncoded = !picture.isEncoded;
  return picture;
}

}  // namespace

float encodeSrgb(float linear) {
  return linear <= 0.0031308f ? 12.92f * linear : 1.055f * std::pow(linear, 1 / 2.4f) - 0.055f;
}

float decodeSrgb(float encoded) {
  return encoded <= 0.04045f ? encoded / 12.92f : std::pow((encoded + 0.055f) / 1.055f, 2.4f);
}

Picture linearized(Picture picture) {
  return picture.isEncoded ? changed(std::move(picture), decodeSrgb) : picture;
}

Picture encoded(Picture picture) {
  return picture.isEncoded ? picture : changed(std::move(picture), encodeSrgb);
}

Picture readPicture(const std::filesystem::path& file) {
  const Bytes bytes = readFile(file);
  constexpr std::uint8_t kExr[] = {0x76, 0x2f, 0x31, 0x01};
  if (bytes.size() >= 4 && std::equal(std::begin(kExr), std::end(kExr), bytes.begin())) return readExr(file);
  if (bytes.size() > std::size_t{1} << 30) throw unreadable(file, "it is too large");
  return readCommon(file, bytes);
}

std::string writePicture(const Picture& picture, PictureFormat format) {
  switch (format) {
  case PictureFormat::exr: return writeExr(linearized(picture));
  case PictureFormat::hdr: return writeHdr(linearized(picture));
  case PictureFormat::png: break;
  }
  return writePng(encoded(picture));
}

std::string writeAnimation(const std::vector<Picture>& pictures, unsigned framesPerSecond) {
  const std::string first = writePicture(pictures.front(), PictureFormat::png);
  std::string written = first.substr(0, 8);
  written += chunk("IHDR", chunksOf(first, "IHDR"));
  written += chunk("acTL", bigEndian(static_cast<std::uint32_t>(pictures.size())) + bigEndian(0));
  std::uint32_t number = 0;
  for (const Picture& picture : pictures) {
    const std::string data = chunksOf(writePicture(picture, PictureFormat::png), "IDAT");
    std::string control = bigEndian(number++) + bigEndian(picture.width) + bigEndian(picture.height);
    control +=
        bigEndian(0) + bigEndian(0) + bigEndian(1, 2) + bigEndian(framesPerSecond, 2) + bigEndian(0, 2);
    written += chunk("fcTL", control);
    const bool isFirst = number == 1;
    written += isFirst ? chunk("IDAT", data) : chunk("fdAT", bigEndian(number++) + data);
  }
  return written + chunk("IEND", {});
}

}  // namespace pictures
