#include "import/xml_reader.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include <pugixml.hpp>

#include "import/upgrade.h"

namespace TolmSDK::Graphics::sfg::materialx {

namespace {

constexpr int kDeepestElement = 256;
constexpr std::size_t kMostFiles = 10'000;

/// Reads one file and those that it includes, which wait in a list.
class Reader {
public:
  Reader(const XmlReading& reading, ElementTree& tree, Reports& reports)
      : reading_(reading), tree_(tree), reports_(reports) {}

  bool read(const std::filesystem::path& file) {
    std::optional<std::string> text = reading_.textOf(file);
    if (!text) return false;
    seen_.insert(keyOf(file));
    readText(file, std::move(*text), {});
    while (!waiting_.empty()) {
      const Include next = std::move(waiting_.back());
      waiting_.pop_back();
      include(next);
    }
    return true;
  }

private:
  struct Include {
    const Element* element;  ///< of the root's, while it is read
    std::string file;
    std::filesystem::path folder;
    std::string nameSpace;
  };

  static std::string keyOf(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(file, error);
    return (error ? file.lexically_normal() : canonical).string();
  }

  void include(const Include& wanted) {
    std::vector<std::filesystem::path> folders{wanted.folder};
    folders.insert(folders.end(), reading_.folders.begin(), reading_.folders.end());
    for (const std::filesystem::path& folder : folders) {
      const std::filesystem::path file = folder / wanted.file;
      if (seen_.count(keyOf(file)) > 0) return;
      std::optional<std::string> text = reading_.textOf(file);
      if (!text) continue;
      if (seen_.size() >= kMostFiles) {
        return reports_.error(*wanted.element, "more than 10000 files are included", "cannot-import");
      }
      seen_.insert(keyOf(file));
      return readText(file, std::move(*text), wanted.nameSpace);
    }
    reports_.error(*wanted.element, "there is no file `" + wanted.file + "`", "unreadable-file");
  }

  void readText(const std::filesystem::path& file, std::string text, const std::string& nameSpace) {
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    const SourceFile& source = tree_.addFile(file.string(), std::move(text));
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(source.text.data(), source.text.size(),
                                                               pugi::parse_default, pugi::encoding_utf8);
    if (!result) tellBroken(source, result);
    const pugi::xml_node root = document.document_element();
    if (!root) return;
    if (std::string_view(root.name()) != "materialx") tellRoot(source, root);
    copy(root, source, file.parent_path(), nameSpace);
  }

  void tellBroken(const SourceFile& source, const pugi::xml_parse_result& result) {
    Element place;
    place.file = &source;
    place.offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0));
    std::string what = result.description();
    if (!what.empty()) what[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(what[0])));
    reports_.error(place, "this is no XML: " + what, "malformed-xml");
  }

  void tellRoot(const SourceFile& source, const pugi::xml_node& root) {
    Element place;
    place.file = &source;
    place.offset = offsetOf(root);
    reports_.error(place, "the outermost element is `" + std::string(root.name()) + "`, not `materialx`",
                   "malformed-xml");
  }

  static std::size_t offsetOf(const pugi::xml_node& node) {
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug() - 1, 0));
  }

  /// Copies what stands in the outermost element, which itself becomes a child of the root. No recursion.
  void copy(const pugi::xml_node& root, const SourceFile& source, const std::filesystem::path& folder,
            const std::string& nameSpace) {
    Element& top = add(tree_.root(), root, source);
    top.category = "materialx";
    top.scope =
        &tree_.addScope({std::string(top.attribute("fileprefix")), std::string(top.attribute("colorspace")),
                         top.has("namespace") ? std::string(top.attribute("namespace")) : nameSpace});
    Element* parent = &top;
    pugi::xml_node node = root.first_child();
    for (int depth = 1; node || depth > 1;) {
      if (!node) {  // up, behind the element that was just left
        node = nodes_.back().next_sibling();
        nodes_.pop_back();
        parent = parent->parent;
        --depth;
        continue;
      }
      if (node.type() != pugi::node_element) {
        node = node.next_sibling();
        continue;
      }
      Element& element = add(*parent, node, source);
      if (element.category == "xi:include") {
        parent->children.pop_back();
        waiting_.push_back(
            {&element, std::string(element.attribute("href")), folder, element.scope->nameSpace});
      } else if (node.first_child() && depth < kDeepestElement) {
        nodes_.push_back(node);
        parent = &element;
        node = node.first_child();
        ++depth;
        continue;
      } else if (node.first_child()) {
        reports_.error(element, "elements are nested deeper than 256 levels", "malformed-xml");
      }
      node = node.next_sibling();
    }
    upgradeDocument(top, tree_, reports_);
    for (Element* const element : top.children) qualify(*element);
  }

  Element& add(Element& parent, const pugi::xml_node& node, const SourceFile& source) {
    Element& element = tree_.add(parent, node.name(), &source, offsetOf(node));
    std::set<std::string_view> names;
    for (const pugi::xml_attribute attribute : node.attributes()) {
      if (!names.insert(attribute.name()).second) {
        reports_.error(element, "the attribute `" + std::string(attribute.name()) + "` stands twice",
                       "malformed-xml");
        continue;
      }
      element.attributes.push_back({attribute.name(), attribute.value()});
    }
    element.name = std::string(element.attribute("name"));
    if (element.has("fileprefix") || element.has("colorspace")) {
      ElementScope scope = *parent.scope;
      if (element.has("fileprefix")) scope.filePrefix = element.attribute("fileprefix");
      if (element.has("colorspace")) scope.colorSpace = element.attribute("colorspace");
      element.scope = &tree_.addScope(std::move(scope));
    }
    return element;
  }

  static void qualify(Element& element) {
    if (!element.scope->nameSpace.empty() && !element.name.empty()) {
      element.name = element.scope->nameSpace + ":" + element.name;
    }
  }

  const XmlReading& reading_;
  ElementTree& tree_;
  Reports& reports_;
  std::vector<pugi::xml_node> nodes_;
  std::set<std::string> seen_;
  std::vector<Include> waiting_;
};

/// The children of the files' outermost elements become children of the one root.
void joinFiles(ElementTree& tree) {
  Element& root = tree.root();
  std::vector<Element*> files = std::move(root.children);
  root.children.clear();
  for (Element* const file : files) {
    for (Element* const element : file->children) {
      element->parent = &root;
      root.children.push_back(element);
    }
  }
}

}  // namespace

FileText readFromDisk() {
  return [](const std::filesystem::path& file) -> std::optional<std::string> {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return std::nullopt;
    return std::string{std::istreambuf_iterator<char>(stream), {}};
  };
}

bool readXml(const std::filesystem::path& file, const XmlReading& reading, ElementTree& tree,
             Reports& reports) {
  if (!Reader(reading, tree, reports).read(file)) return false;
  joinFiles(tree);
  return true;
}

}  // namespace TolmSDK::Graphics::sfg::materialx
