// What an editor sends: any bytes. Whatever they are, each message that goes out is one, and the conversation
// ends with the input.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "tests/fuzz/fuzz_input.h"
#include "tools/lsp/framing.h"
#include "tools/lsp/rpc.h"
#include "tools/lsp/server.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace TolmSDK;
  using namespace TolmSDK::Graphics::sfg::tools::lsp;
  // A file of the corpus is messages, a line each; what is no object goes out as it is.
  std::istringstream lines{std::string(bytesOf(data, size))};
  std::string framed;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("{")) framed += "Content-Length: " + std::to_string(line.size()) + "\r\n\r\n";
    framed += line;
  }
  std::istringstream in(framed);
  std::ostringstream out;
  Settings settings;
  settings.withoutStandard = true;
  settings.libraryFolders = {SFG_REPOSITORY "/examples/first/fragments"};
  const int status = serve(in, out, settings);
  require(status == 0 || status == 1, "the exit status is 0 or 1");
  std::istringstream written(out.str());
  FrameReader reader(written);
  FrameReader::Outcome outcome = reader.read();
  for (; outcome == FrameReader::Outcome::message; outcome = reader.read())
    require(memberOf(Json::parse(reader.text()), "jsonrpc") == "2.0", "what goes out is a message");
  require(outcome == FrameReader::Outcome::ended, "all that goes out are messages");
  return 0;
}
