# Third-party libraries, by their packages' own CMake names. docs/dependencies.md says why each was chosen.

find_package(nlohmann_json 3.9 REQUIRED)
find_package(RapidJSON 1.1 REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
find_package(ICU REQUIRED COMPONENTS uc)
find_package(CLI11 2 REQUIRED)

if(SFG_BUILD_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()
if(SFG_BUILD_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
