#pragma once

// Cases that need gigabytes, which run when they are asked for.

namespace TolmSDK::Graphics::sfg::benchmarks {

/// Registers "unused nodes" and "large library": the memory of a million of each.
void registerLargeCases();

}  // namespace TolmSDK::Graphics::sfg::benchmarks
