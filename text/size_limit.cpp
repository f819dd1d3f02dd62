#include "sfg/size_limit.h"

#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

void checkTextLength(std::size_t length) {
  if (length > kMaximumTextLength) throw Exception(L"sfgError : the generated code is too large!");
}

}  // namespace TolmSDK::Graphics::sfg
