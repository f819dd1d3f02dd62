#pragma once

// What the allocator does with memory that is freed.

namespace TolmSDK::Graphics::sfg::tools {

/// From now on freed memory stays with the process, for what is made next. For commands that make many things
/// of a kind one after the other: else the system clears the same pages again for each of them. Does nothing
/// where the C library cannot be told.
void keepFreedMemory();

}  // namespace TolmSDK::Graphics::sfg::tools
