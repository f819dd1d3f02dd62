#pragma once

#include "tests/numbers/row.h"

namespace numbers_test {

Topic textureTopic();

}  // namespace numbers_test
