#include "host/build/build_state.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "sfg/host/output.h"
#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

/// Changes whenever lines or hashes mean something else; journals of another form are passed over.
constexpr std::string_view kPrefix = "journal-1";
constexpr std::size_t kCheckDigits = 8;

/// Without tabs and line feeds.
std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '\t') {
      out += "%t";
    } else if (c == '\n') {
      out += "%n";
    } else if (c == '%') {
      out += "%%";
    } else {
      out += c;
    }
  }
  return out;
}

std::string unescaped(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const char c = text[++i];
    out += c == 't' ? '\t' : c == 'n' ? '\n' : c;
  }
  return out;
}

std::vector<std::string_view> fieldsOf(std::string_view line) {
  std::vector<std::string_view> fields;
  for (;;) {
    const std::size_t end = line.find('\t');
    fields.push_back(line.substr(0, end));
    if (end == line.npos) return fields;
    line.remove_prefix(end + 1);
  }
}

/// Nothing for text that is no number.
template <class Number>
std::optional<Number> numberOf(std::string_view text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

void add(std::string& line, const FileMark& mark) {
  line += "\t" + std::to_string(mark.stamp.size) + "\t" + std::to_string(mark.stamp.time) + "\t" + mark.hash;
}

/// Of three fields.
std::optional<FileMark> markOf(const std::vector<std::string_view>& fields, std::size_t at) {
  const auto size = numberOf<std::uint64_t>(fields[at]);
  const auto time = numberOf<std::int64_t>(fields[at + 1]);
  if (!size || !time) return std::nullopt;
  return FileMark{{*size, *time}, std::string(fields[at + 2])};
}

/// Tells a line that was cut short, or written into by another one.
std::string checkOf(std::string_view line) { return SHA1_GetBytesHash(line).substr(0, kCheckDigits); }

std::string lineOf(const std::string& file, const FileMark& mark) {
  std::string line = "F\t" + escaped(file);
  add(line, mark);
  return line;
}

std::string lineOf(const std::string& output, const OutputNote& note) {
  std::string line = "O\t" + escaped(output) + "\t" + note.inputs + "\t" + note.key + "\t" + note.files;
  for (const FileMark& mark : note.marks) add(line, mark);
  return line;
}

std::string lineOf(const std::string& hash, const std::vector<std::string>& files) {
  std::string line = "L\t" + hash;
  for (const std::string& file : files) line += "\t" + escaped(file);
  return line;
}

std::string checked(const std::string& line) { return line + "\t" + checkOf(line) + "\n"; }

}  // namespace

BuildState::BuildState(const std::string& outputFolder, const std::string& name)
    : folder_((fs::path(outputFolder) / kStateFolder).string()),
      file_((fs::path(folder_) / (std::string(kPrefix) + name)).string()) {
  std::vector<std::string> journals;
  std::error_code error;
  for (fs::directory_iterator entry(folder_, error), end; !error && entry != end; entry.increment(error)) {
    if (entry->path().filename().string().starts_with(kPrefix)) journals.push_back(entry->path().string());
  }
  std::sort(journals.begin(), journals.end());
  for (const std::string& journal : journals) read(journal);
  std::unordered_set<std::string_view> files;
  for (const auto& [file, mark] : files_) files.insert(file);
  known_ = files.size() + notes_.size() + lists_.size();
}

void BuildState::read(const std::string& file) {
  const std::optional<std::string> text = readBytes(file);
  if (!text) return;
  for (std::string_view rest = *text; !rest.empty();) {
    const std::size_t end = rest.find('\n');
    if (end == rest.npos) return;
    readLine(rest.substr(0, end));
    rest.remove_prefix(end + 1);
  }
}

void BuildState::readLine(std::string_view line) {
  ++lines_;
  const std::size_t check = line.rfind('\t');
  if (check == line.npos || checkOf(line.substr(0, check)) != line.substr(check + 1)) return;
  const std::vector<std::string_view> fields = fieldsOf(line.substr(0, check));
  if (fields[0] == "F" && fields.size() == 5) {
    if (auto mark = markOf(fields, 2)) files_.emplace_back(unescaped(fields[1]), std::move(*mark));
  } else if (fields[0] == "L" && fields.size() >= 2) {
    std::vector<std::string>& files = lists_[std::string(fields[1])];
    files.clear();
    for (std::size_t i = 2; i < fields.size(); ++i) files.push_back(unescaped(fields[i]));
  } else if (fields[0] == "O" && fields.size() >= 8 && (fields.size() - 5) % 3 == 0) {
    OutputNote note{std::string(fields[2]), std::string(fields[3]), {}, std::string(fields[4])};
    for (std::size_t i = 5; i < fields.size(); i += 3) {
      auto mark = markOf(fields, i);
      if (!mark) return;
      note.marks.push_back(std::move(*mark));
    }
    notes_[unescaped(fields[1])] = std::move(note);
  }
}

const OutputNote* BuildState::find(const std::string& output) const {
  const auto found = notes_.find(output);
  return found != notes_.end() ? &found->second : nullptr;
}

const std::vector<std::string>* BuildState::findFiles(const std::string& hash) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = lists_.find(hash);
  return found != lists_.end() ? &found->second : nullptr;
}

/// One write for each line, so that lines of several processes stay apart.
void BuildState::append(const std::string& line) {
  if (!fault_.empty()) return;
  errno = 0;
  if (!journal_.is_open()) {
    journal_.open(file_, std::ios::binary | std::ios::app);
    // A line that was cut short ends here.
    journal_ << "\n";
  }
  const std::string text = checked(line);
  journal_.write(text.data(), static_cast<std::streamsize>(text.size())).flush();
  ++lines_;
  ++appended_;
  if (!journal_) fault_ = std::error_code(errno, std::generic_category()).message();
}

void BuildState::note(const std::string& output, const OutputNote& note) {
  const std::lock_guard<std::mutex> lock(mutex_);
  append(lineOf(output, note));
}

void BuildState::noteFile(const std::string& file, const FileMark& mark) {
  const std::lock_guard<std::mutex> lock(mutex_);
  append(lineOf(file, mark));
}

std::string BuildState::noteFiles(const std::vector<std::string>& files) {
  std::string all;
  for (const std::string& file : files) all += escaped(file) + "\n";
  std::string hash = SHA1_GetBytesHash(all);
  const std::lock_guard<std::mutex> lock(mutex_);
  if (lists_.emplace(hash, files).second) append(lineOf(hash, files));
  return hash;
}

/// Of each thing the last line counts, so reading the journal again gives what is still true. There are at
/// least as many things as were known before, and as were noted since, each once: most journals need not be
/// read to know that.
void BuildState::compact() {
  const std::lock_guard<std::mutex> lock(mutex_);
  journal_.close();
  if (appended_ == 0 || lines_ < 2 * std::max(known_, appended_)) return;
  std::unordered_map<std::string, FileMark> files;
  lines_ = 0;
  files_.clear();
  read(file_);
  for (auto& [file, mark] : files_) files[file] = std::move(mark);
  if (lines_ < 1000 || lines_ < 2 * (files.size() + notes_.size() + lists_.size())) return;
  std::string text;
  for (const auto& [file, mark] : files) text += checked(lineOf(file, mark));
  for (const auto& [hash, list] : lists_) text += checked(lineOf(hash, list));
  for (const auto& [output, note] : notes_) text += checked(lineOf(output, note));
  replaceFile(file_, text, folder_);
}

}  // namespace TolmSDK::Graphics::sfg::host
