#include "host/host_version.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace {

constexpr int kWrongUsage = 2;

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Collapses graphs of shader fragments into one shader function.", "sfg");
  app.set_version_flag("--version", TolmSDK::Graphics::sfg::host::versionLine());
  try {
    app.parse(argc, argv);
    std::cout << app.help();
    return 0;
  } catch (CLI::ParseError const& error) {
    return app.exit(error) == 0 ? 0 : kWrongUsage;
  }
}
