#pragma once

#include "tests/numbers/row.h"

namespace numbers_test {

Topic blendingTopic();
Topic colorSpaceTopic();

}  // namespace numbers_test
