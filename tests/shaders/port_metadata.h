#pragma once

// What is wrong with the descriptions of a fragment's inputs, outputs and uniforms.

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace shaders_test {

using Json = nlohmann::ordered_json;

/// The faults of a fragment's "ports" and "uniforms", in the order of the code's parameters, then of the
/// uniforms; empty when all is well. `fragment` is the object that a library file holds. The ports are those
/// of the first profile's code, of an inline fragment those of its "interface".
std::vector<std::string> portFaults(const Json& fragment);

}  // namespace shaders_test
