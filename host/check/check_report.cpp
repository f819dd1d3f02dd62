#include <nlohmann/json.hpp>

#include "sfg/host/check.h"
#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {

std::string toJson(const CheckResult&) { return {}; }
std::string toSarif(const CheckResult&) { return {}; }

}  // namespace TolmSDK::Graphics::sfg::host
