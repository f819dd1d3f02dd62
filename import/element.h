#pragma once

// MaterialX documents as trees of elements, with their places.

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::materialx {

/// A file that was read. Texts are UTF-8.
struct SourceFile {
  std::string name;
  std::string text;
  std::vector<std::size_t> lineStarts;

  /// Line and column of an offset, counted from 1; columns in code points.
  void locate(std::size_t offset, std::size_t& line, std::size_t& column) const;
};

struct Attribute {
  std::string name;
  std::string value;
};

/// What an element takes from those around it.
struct ElementScope {
  std::string filePrefix;
  std::string colorSpace;
  std::string nameSpace;
};

/// One element. Lives as long as its tree.
struct Element {
  std::string category;
  std::string name;  ///< with the namespace of its file
  std::vector<Attribute> attributes;
  Element* parent = nullptr;
  std::vector<Element*> children;
  const SourceFile* file = nullptr;
  std::size_t offset = 0;
  const ElementScope* scope = nullptr;

  /// Empty where there is none.
  std::string_view attribute(std::string_view key) const;
  bool has(std::string_view key) const;
  void set(std::string_view key, std::string_view value);
  void remove(std::string_view key);
  /// The first child of that category and that name, or null.
  Element* child(std::string_view childCategory, std::string_view childName) const;
};

/// All elements of a document and of what it includes, below one root.
class ElementTree {
public:
  ElementTree();
  ElementTree(const ElementTree&) = delete;
  ElementTree& operator=(const ElementTree&) = delete;

  Element& root() { return elements_.front(); }
  const Element& root() const { return elements_.front(); }

  Element& add(Element& parent, std::string category, const SourceFile* file, std::size_t offset);
  /// An element that a reader makes at the place of another one.
  Element& addLike(Element& parent, std::string category, const Element& place);
  SourceFile& addFile(std::string name, std::string text);
  const ElementScope& addScope(ElementScope scope);
  const std::deque<SourceFile>& files() const { return files_; }

private:
  std::deque<Element> elements_;
  std::deque<SourceFile> files_;
  std::deque<ElementScope> scopes_;
};

/// What is told of an element, at its line. Kinds are those of host::diagnosticKinds().
class Reports {
public:
  void error(const Element& place, std::string text, std::string kind, std::string suggestion = {});
  void warning(const Element& place, std::string text, std::string kind, std::string suggestion = {});
  void note(const Element& place, std::string text, std::string kind);
  void add(host::Diagnostic diagnostic);

  const std::vector<host::Diagnostic>& all() const { return all_; }
  std::vector<host::Diagnostic> take() { return std::move(all_); }

private:
  void tell(host::Severity severity, const Element& place, std::string text, std::string kind,
            std::string suggestion);

  std::vector<host::Diagnostic> all_;
};

}  // namespace TolmSDK::Graphics::sfg::materialx
