#pragma once

// What builds into a folder have noted there: of each output what it was made of.

#include <cstdio>
#include <fstream>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/build/file_stamps.h"

namespace TolmSDK::Graphics::sfg::host {

/// In the output folder: notes, and files that are not finished yet.
inline constexpr std::string_view kStateFolder = ".sfg-build";

/// Of one output, or of two: a shader and its reflection.
struct OutputNote {
  std::string inputs;           ///< hash of everything that could have mattered
  std::string key;              ///< hash of what did matter
  std::vector<FileMark> marks;  ///< of the output and its reflection
  std::string files;            ///< hash of the list of files
};

/// The notes of an output folder: a journal, to which each finished shader adds a line. A line that is not
/// whole counts as none, and notes that are lost cost time only. Several processes may add to one journal.
/// find() is for when nobody notes; note() for any number of threads.
class BuildState {
public:
  /// Reads the journals of all shards. This one adds to that of `name`.
  BuildState(const std::string& outputFolder, const std::string& name);

  /// What earlier builds knew of files, once.
  std::vector<std::pair<std::string, FileMark>> takeFiles() { return std::exchange(files_, {}); }
  /// Null for an output that nothing is noted of.
  const OutputNote* find(const std::string& output) const;
  /// The list of that hash; null when it is not known.
  const std::vector<std::string>* findFiles(const std::string& hash) const;

  void note(const std::string& output, const OutputNote& note);
  void noteFile(const std::string& file, const FileMark& mark);
  /// Notes the list, if it is not noted yet; answers its hash.
  std::string noteFiles(const std::vector<std::string>& files);
  /// Why nothing can be noted; empty when all is well.
  const std::string& fault() const noexcept { return fault_; }

  /// Writes the journal anew when most of it is out of date.
  void compact();

private:
  void read(const std::string& file);
  void readLine(std::string_view line);
  void append(const std::string& line);

  std::string folder_;
  std::string file_;
  std::ofstream journal_;
  mutable std::mutex mutex_;
  std::vector<std::pair<std::string, FileMark>> files_;
  std::unordered_map<std::string, OutputNote> notes_;
  std::unordered_map<std::string, std::vector<std::string>> lists_;
  std::size_t lines_ = 0;     // of all journals
  std::size_t known_ = 0;     // things that lines told of when they were read
  std::size_t appended_ = 0;  // lines of this object
  std::string fault_;
};

}  // namespace TolmSDK::Graphics::sfg::host
