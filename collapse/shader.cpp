#include "sfg/shader.h"

namespace TolmSDK::Graphics::sfg {

AShader::AShader() = default;
AShader::~AShader() = default;

}  // namespace TolmSDK::Graphics::sfg
