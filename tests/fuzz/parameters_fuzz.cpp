// Text parameter lists: what parses is written as a list that parses to the same; what does not leaves
// nothing behind.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/unicode.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace TolmSDK;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  Graphics::ATextParameterList list;
  if (!list.parseParameters(fromUtf8(bytes))) {
    require(list.getNumInputs() == 0 && list.getNumOutputs() == 0);
    return 0;
  }
  WString written;
  list.writeParameters(written, L"    ", true);
  Graphics::ATextParameterList again;
  require(again.parseParameters(written));
  WString writtenAgain;
  again.writeParameters(writtenAgain, L"    ", true);
  require(written == writtenAgain);
  require(again.getNumInputs() == list.getNumInputs() && again.getNumOutputs() == list.getNumOutputs());
  return 0;
}
