#pragma once

// Places of include files by their assembled text.

#include <string>
#include <vector>

#include "host/library/source_texts.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

/// The text of an include as shaders hold it: its files one behind another, without their lines that include
/// others.
class IncludePlaces {
public:
  struct Place {
    std::string file;
    TextPosition position;
  };

  IncludePlaces(const SourceTexts& texts, const WString& name);

  /// The place of a character of that text; without a file behind its end.
  Place find(std::size_t offset) const;

private:
  /// A part of the text that a file holds in one piece.
  struct Piece {
    std::size_t begin = 0;  ///< in the text
    std::size_t file = 0;
    std::size_t place = 0;  ///< in the file
  };
  struct File {
    std::string name;
    WString text;
    std::vector<std::size_t> lines;
  };

  void add(const std::string& name, const std::string& bytes);

  std::vector<File> files_;
  std::vector<Piece> pieces_;
  std::size_t size_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg::host
