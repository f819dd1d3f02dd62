#pragma once

#include "tests/numbers/row.h"

namespace numbers_test {

Topic shapeTopic();

}  // namespace numbers_test
