#pragma once

namespace faulty {

/// \nosuchcommand This is a fault on purpose.
int answer();

}  // namespace faulty
