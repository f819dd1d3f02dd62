#pragma once

#include "tests/numbers/row.h"

namespace numbers_test {

Topic layerTopic();

}  // namespace numbers_test
