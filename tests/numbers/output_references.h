#pragma once

#include "tests/numbers/row.h"

namespace numbers_test {

Topic outputTopic();
Topic postTopic();
// But for the light, which answers a structure.
Topic environmentTopic();

}  // namespace numbers_test
