#include "tolmsdk/sha1.h"

#include <openssl/err.h>
#include <openssl/evp.h>

#include <array>
#include <memory>
#include <new>

#include "platform/utf.h"
#include "tolmsdk/exception.h"

namespace TolmSDK {

namespace {

constexpr std::size_t kDigestSize = 20;

/// Of an algorithm that is there, a step fails for want of memory only.
void require(bool succeeded) {
  if (succeeded) return;
  ERR_clear_error();
  throw std::bad_alloc();
}

const EVP_MD* fetchAlgorithm() {
  const EVP_MD* const sha1 = EVP_MD_fetch(nullptr, "SHA1", nullptr);
  if (sha1 != nullptr) return sha1;
  // Where memory is short, the reason may not have been noted either.
  const unsigned long reason = ERR_peek_error();
  ERR_clear_error();
  require(reason != 0 && ERR_GET_REASON(reason) != ERR_R_MALLOC_FAILURE);
  throw Exception(L"sfgError : SHA-1 is not available!");
}

/// Looked up once: asking the providers for it costs more than hashing a short text.
const EVP_MD* algorithm() {
  static const EVP_MD* const sha1 = fetchAlgorithm();
  return sha1;
}

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const noexcept { EVP_MD_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_MD_CTX, FreeContext>;

/// Feeds the text's UTF-8 to the context piece by piece, so that no copy of a long text is made.
void update(EVP_MD_CTX* context, std::wstring_view text) {
  std::array<char, 1024> bytes;
  std::size_t used = 0;
  for (std::size_t index = 0; index < text.size();) {
    if (static_cast<char32_t>(text[index]) < 0x80) {
      bytes[used++] = static_cast<char>(text[index++]);
    } else {
      used += writeUtf8(bytes.data() + used, nextCodePoint(text, index));
    }
    if (used > bytes.size() - 4) {
      require(EVP_DigestUpdate(context, bytes.data(), used) == 1);
      used = 0;
    }
  }
  require(EVP_DigestUpdate(context, bytes.data(), used) == 1);
}

/// One for each text: a context kept for the thread would end the process where memory is too short to note
/// that the thread has one.
Context start() {
  Context context(EVP_MD_CTX_new());
  require(context != nullptr);
  require(EVP_DigestInit_ex2(context.get(), algorithm(), nullptr) == 1);
  return context;
}

template <class Text>
Text finish(EVP_MD_CTX* context) {
  std::array<unsigned char, kDigestSize> digest;
  require(EVP_DigestFinal_ex(context, digest.data(), nullptr) == 1);
  Text out;
  out.reserve(2 * kDigestSize);
  for (const unsigned byte : digest) {
    out += static_cast<typename Text::value_type>("0123456789abcdef"[byte >> 4]);
    out += static_cast<typename Text::value_type>("0123456789abcdef"[byte & 15]);
  }
  return out;
}

}  // namespace

WString SHA1_GetStringHash(std::wstring_view text) {
  const Context context = start();
  update(context.get(), text);
  return finish<WString>(context.get());
}

std::string SHA1_GetBytesHash(std::string_view bytes) {
  const Context context = start();
  require(EVP_DigestUpdate(context.get(), bytes.data(), bytes.size()) == 1);
  return finish<std::string>(context.get());
}

}  // namespace TolmSDK
