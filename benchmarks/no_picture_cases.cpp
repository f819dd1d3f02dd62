#include "benchmarks/picture_cases.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

std::vector<Case> pictureCases() { return {}; }

std::string whyNoPictures() { return "built without pictures"; }

}  // namespace TolmSDK::Graphics::sfg::benchmarks
