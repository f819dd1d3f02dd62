#pragma once

// Messages on a byte stream: headers, an empty line, and as many bytes as "Content-Length" says.

#include <cstddef>
#include <iosfwd>
#include <string>

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// Reads one message after another. After something malformed it goes on at the next header that says a
/// length.
class FrameReader {
public:
  enum class Outcome {
    message,    ///< text() is it
    malformed,  ///< text() says why
    ended       ///< of the input, perhaps in the midst of a message
  };
  static constexpr std::size_t kLongestMessage = std::size_t{1} << 26;

  /// The stream lives as long as this.
  explicit FrameReader(std::istream& in, std::size_t longest = kLongestMessage)
      : in_(in), longest_(longest) {}

  /// Waits for the next one. A longer message than the longest is passed over; memory is taken for what was
  /// read, not for what was announced.
  Outcome read();
  const std::string& text() const noexcept { return text_; }

private:
  enum class Line { text, empty, ended };

  Line readLine();
  Outcome readBody(std::size_t length);
  Outcome malformed(std::string why);

  std::istream& in_;
  std::size_t longest_;
  std::string line_;
  std::string text_;
};

/// Writes a message and flushes.
void writeFrame(std::ostream& out, const std::string& text);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
