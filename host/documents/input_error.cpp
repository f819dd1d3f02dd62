#include "host/documents/input_error.h"

namespace TolmSDK::Graphics::sfg::host {

std::string InputError::place() const {
  if (file_.empty() || position_.line == 0) return file_;
  return file_ + ":" + std::to_string(position_.line) + ":" + std::to_string(position_.column);
}

}  // namespace TolmSDK::Graphics::sfg::host
