#include "import/upgrade.h"

#include <cstdlib>
#include <string>
#include <utility>

namespace TolmSDK::Graphics::sfg::materialx {

namespace {

/// 139 for "1.39".
int versionOf(const Element& top) {
  const std::string text(top.attribute("version"));
  const std::size_t dot = text.find('.');
  if (dot == std::string::npos) return text.empty() ? 139 : 100 * std::atoi(text.c_str());
  const std::string minor = text.substr(dot + 1, 2);
  return 100 * std::atoi(text.c_str()) + std::atoi(minor.c_str()) * (minor.size() == 1 ? 10 : 1);
}

void rename(Element& element, std::string_view name) {
  element.set("name", name);
  element.name = name;
}

void renameInput(const Element& node, std::string_view from, std::string_view to) {
  if (Element* const input = node.child("input", from)) rename(*input, to);
}

void swapInputs(const Element& node, std::string_view one, std::string_view other) {
  Element* const first = node.child("input", one);
  Element* const second = node.child("input", other);
  if (first != nullptr) rename(*first, other);
  if (second != nullptr) rename(*second, one);
}

void dropInput(Element& node, std::string_view name) {
  std::erase_if(node.children,
                [&](const Element* child) { return child->category == "input" && child->name == name; });
}

struct Renamed {
  std::string_view from;
  std::string_view to;
};

// Up to 1.37.
constexpr Renamed kOldCategories[] = {
    {"parameter", "input"},         {"opgraph", "nodegraph"}, {"geomattrvalue", "geompropvalue"},
    {"geomattrdef", "geompropdef"}, {"scale", "multiply"},    {"log", "ln"},
    {"bindparam", "input"},         {"bindinput", "input"},   {"bindtoken", "token"},
};
constexpr Renamed kOldTypes[] = {{"vector", "vector3"}, {"color", "color3"}, {"color2", "vector2"}};

void renameOldWords(Element& element) {
  for (const Renamed& word : kOldCategories) {
    if (element.category == word.from) {
      if (word.from == "scale") {
        renameInput(element, "in", "in1");
        renameInput(element, "amount", "in2");
      }
      element.category = word.to;
      break;
    }
  }
  for (const Renamed& type : kOldTypes) {
    if (element.attribute("type") == type.from) element.set("type", type.to);
  }
}

std::size_t inputCount(const Element& node) {
  std::size_t count = 0;
  for (const Element* const child : node.children) count += child->category == "input" ? 1 : 0;
  return count;
}

/// Nodes up to 1.37 whose children have their present names already.
void upgradeOldNode(Element& node) {
  const std::string category = node.category;
  if (category == "geompropvalue") {
    renameInput(node, "attrname", "geomprop");
  } else if (category == "rotate") {
    node.category = node.attribute("type") == "vector2" ? "rotate2d" : "rotate3d";
  } else if (category == "combine") {
    node.category = "combine" + std::to_string(inputCount(node));
  } else if (category == "separate") {
    const std::string_view type = node.children.empty() ? "" : node.children.front()->attribute("type");
    node.category = "separate" + std::string(type.empty() ? "3" : type.substr(type.size() - 1));
  } else if (category == "compare") {
    // The first value was taken up to the cutoff, the second one above it.
    node.category = "ifgreater";
    renameInput(node, "intest", "value1");
    renameInput(node, "cutoff", "value2");
    swapInputs(node, "in1", "in2");
  }
  for (Element* const input : node.children) {
    const bool isAddressing = input->name == "uaddressmode" || input->name == "vaddressmode";
    if (isAddressing && input->attribute("value") == "black") input->set("value", "constant");
  }
}

/// Up to 1.38.
void upgradeNode(Element& node) {
  if (node.category == "atan2") {
    renameInput(node, "in1", "iny");
    renameInput(node, "in2", "inx");
  } else if (node.category == "normalmap") {
    dropInput(node, "space");
  } else if (node.category == "subsurface_bsdf") {
    Element* const radius = node.child("input", "radius");
    if (radius != nullptr && radius->attribute("type") == "vector3") radius->set("type", "color3");
  }
}

/// A `material` with references to shaders becomes shader nodes and a `surfacematerial`.
class OldMaterials {
public:
  OldMaterials(Element& top, ElementTree& tree, Reports& reports)
      : top_(top), tree_(tree), reports_(reports) {}

  void run() {
    const std::vector<Element*> elements = top_.children;
    for (Element* const element : elements) {
      if (element->category == "material") upgrade(*element);
    }
  }

private:
  void upgrade(Element& material) {
    const std::vector<Element*> children = std::move(material.children);
    material.children.clear();
    material.category = "surfacematerial";
    material.set("type", "material");
    for (Element* const child : children) {
      if (child->category == "shaderref") {
        addShader(material, *child);
      } else if (child->category == "token") {
        material.children.push_back(child);
      } else {
        reports_.warning(*child, "`" + child->category + "` of a material is left out", "cannot-import");
      }
    }
  }

  void addShader(Element& material, Element& reference) {
    const std::string name = material.name + "_" + reference.name;
    std::string type(reference.attribute("shadertype"));
    if (type.empty()) type = "surfaceshader";
    Element& shader = tree_.addLike(top_, std::string(reference.attribute("node")), reference);
    shader.attributes = {{"name", name}, {"type", type}};
    shader.name = name;
    shader.children = std::move(reference.children);
    for (Element* const input : shader.children) input->parent = &shader;
    if (type != "surfaceshader") return;
    Element& input = tree_.addLike(material, "input", reference);
    input.attributes = {{"name", "surfaceshader"}, {"type", type}, {"nodename", name}};
    input.name = "surfaceshader";
  }

  Element& top_;
  ElementTree& tree_;
  Reports& reports_;
};

/// All elements below `top`, children behind their parents.
std::vector<Element*> elementsBelow(Element& top) {
  std::vector<Element*> all(top.children);
  for (std::size_t i = 0; i < all.size(); ++i) {
    const std::vector<Element*>& children = all[i]->children;
    all.insert(all.end(), children.begin(), children.end());
  }
  return all;
}

}  // namespace

void upgradeDocument(Element& top, ElementTree& tree, Reports& reports) {
  const int version = versionOf(top);
  if (version >= 139) return;
  const std::vector<Element*> elements = elementsBelow(top);
  if (version < 138) {
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) renameOldWords(**element);
    for (Element* const element : elements) upgradeOldNode(*element);
    OldMaterials(top, tree, reports).run();
  }
  for (Element* const element : elements) upgradeNode(*element);
}

}  // namespace TolmSDK::Graphics::sfg::materialx
