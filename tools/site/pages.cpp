#include "tools/site/pages.h"

#include <algorithm>
#include <cctype>

#include "tools/site/code_colors.h"
#include "tools/site/looks.h"
#include "tools/site/markup.h"

namespace TolmSDK::Graphics::sfg::site {

namespace {

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

Markup link(const std::string& to, const std::string& text) { return element("a", {{"href", to}}, text); }

/// A page; `up` leads from it to the root.
std::string page(const Site& site, const std::string& up, const std::string& title, const Markup& content) {
  Markup head;
  head << element("meta", {{"charset", "utf-8"}})
       << element("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}})
       << element("title", title + " - " + site.title)
       << element("link", {{"rel", "icon"}, {"href", "data:,"}})
       << element("link", {{"rel", "stylesheet"}, {"href", up + "style.css"}})
       << element("script", {{"src", up + "search.js"}, {"defer", ""}});
  Markup places;
  places << element("li", link(up + "index.html", "Fragments"));
  if (!site.examples.empty()) places << element("li", link(up + "gallery.html", "Gallery"));
  if (!site.includes.empty()) places << element("li", link(up + "includes.html", "Include files"));
  Markup search;
  search << element("label", {{"for", "q"}}, "Search")
         << element("input", {{"type", "search"}, {"id", "q"}, {"name", "q"}, {"autocomplete", "off"}})
         << element("button", {{"type", "submit"}}, "Find");
  Markup header;
  header << element("nav", {{"aria-label", "Site"}}, element("ul", places))
         << element("form", {{"role", "search"}, {"action", up + "index.html"}, {"method", "get"}}, search);
  Markup heading = element("h1", title);
  heading << content;
  Markup body = element("a", {{"class", "skip"}, {"href", "#main"}}, "Skip to the content");
  body << element("header", header) << element("main", {{"id", "main"}, {"tabindex", "-1"}}, heading);
  Markup all = element("head", head);
  all << element("body", body);
  return "<!DOCTYPE html>\n" + element("html", {{"lang", "en"}}, all).html() + "\n";
}

/// Scrolled by the keyboard, too.
Markup codeBox(const std::string& label, const Markup& code) {
  return element("pre", {{"tabindex", "0"}, {"role", "region"}, {"aria-label", label}},
                 element("code", code));
}

Markup figure(const std::string& up, const Shown& shown, const std::string& alt) {
  Markup content = element("img", {{"src", up + shown.file}, {"alt", alt}, {"loading", "lazy"}});
  content << element("figcaption", shown.caption);
  return element("figure", content);
}

class Printer {
public:
  explicit Printer(const Site& site) : site_(site), files_(fragmentFiles(site)) {
    for (std::size_t i = 0; i < site.fragments.size(); ++i) pageOf_[site.fragments[i].name] = fragmentPage(i);
    std::map<std::string, int> taken;
    for (const IncludeFile& include : site.includes)
      includeOf_[include.name] = "includes/" + fileNameOf(include.name, taken) + ".html";
    std::map<std::string, int> takenExamples;
    for (const Example& example : site.examples)
      anchors_.push_back("example-" + fileNameOf(example.name, takenExamples));
  }

  std::map<std::string, std::string> print() {
    pages_["style.css"] = kStyle;
    pages_["search.js"] = kSearch;
    pages_["index.html"] = page(site_, "", "Fragments", index());
    for (std::size_t i = 0; i < site_.fragments.size(); ++i)
      pages_[fragmentPage(i)] = page(site_, "../", site_.fragments[i].name, fragment(i));
    if (!site_.examples.empty()) pages_["gallery.html"] = page(site_, "", "Gallery", gallery());
    if (!site_.includes.empty()) pages_["includes.html"] = page(site_, "", "Include files", includes());
    for (const IncludeFile& include : site_.includes)
      pages_[includeOf_[include.name]] = page(site_, "../", include.name, includePage(include));
    return std::move(pages_);
  }

private:
  std::string fragmentPage(std::size_t index) const { return "fragments/" + files_[index] + ".html"; }

  // The list of all

  Markup index() const {
    Markup content = element("p", {{"id", "status"}, {"role", "status"}},
                             std::to_string(site_.fragments.size()) + " fragments");
    std::map<std::string, Markup> topics;
    for (std::size_t i = 0; i < site_.fragments.size(); ++i) topics[site_.fragments[i].topic] << row(i);
    for (const auto& [topic, rows] : topics) {
      Markup section = element("h2", topic);
      section << element("ul", {{"class", "fragments"}}, rows);
      content << element("section", {{"class", "topic"}}, section);
    }
    return content;
  }

  Markup row(std::size_t index) const {
    const Fragment& fragment = site_.fragments[index];
    Markup content;
    if (!fragment.pictures.empty()) {
      content << element("img", {{"src", fragment.pictures.front().file}, {"alt", ""}, {"loading", "lazy"}});
    }
    Markup words = link(fragmentPage(index), fragment.name);
    words << " " << element("span", fragment.description);
    content << element("div", words);
    const std::string found = fragment.name + " " + fragment.description + " " + fragment.topic;
    return element("li", {{"data-words", lowered(found)}}, content);
  }

  // One fragment

  Markup fragment(std::size_t index) const {
    const Fragment& fragment = site_.fragments[index];
    Markup content = element("p", {{"class", "lead"}}, fragment.description);
    content << pictures(fragment.pictures, fragment.name);
    content << ports(fragment, Port::Role::input, "Inputs")
            << ports(fragment, Port::Role::uniform, "Uniforms")
            << ports(fragment, Port::Role::output, "Outputs");
    content << element("h2", "Code");
    for (std::size_t i = 0; i < fragment.profiles.size(); ++i) content << profile(fragment, i);
    content << element("h2", "Used in") << uses(fragment);
    if (!fragment.source.empty()) content << element("h2", "Source") << element("p", fragment.source);
    content << element("p", {{"class", "place"}}, fragment.place) << neighbours(index);
    return content;
  }

  static Markup pictures(const std::vector<Shown>& shown, const std::string& name) {
    if (shown.empty()) return {};
    Markup figures;
    for (const Shown& picture : shown) figures << figure("../", picture, name + ", " + picture.caption);
    return element("div", {{"class", "pictures"}}, figures);
  }

  static Markup ports(const Fragment& fragment, Port::Role role, const char* title) {
    Markup rows;
    for (const Port& port : fragment.ports) {
      if (port.role == role) rows << portRow(port);
    }
    if (rows.isEmpty()) return {};
    Markup heads;
    for (const char* const head : {"Name", "Type", "Value", "Range", "Kind", "Meaning"})
      heads << element("th", {{"scope", "col"}}, head);
    Markup table = element("thead", element("tr", heads));
    table << element("tbody", rows);
    Markup section = element("h2", title);
    section << element("div",
                       {{"class", "wide"}, {"tabindex", "0"}, {"role", "region"}, {"aria-label", title}},
                       element("table", table));
    return section;
  }

  static Markup portRow(const Port& port) {
    Markup name = element("code", port.name);
    if (!port.label.empty()) name << " " << element("small", port.label);
    std::string range = port.range;
    if (!port.step.empty()) range.append(range.empty() ? "step " : ", step ").append(port.step);
    std::string kind = port.kind;
    if (!port.space.empty()) kind.append(kind.empty() ? "" : ", ").append(port.space);
    Markup cells = element("th", {{"scope", "row"}}, name);
    cells << element("td", element("code", port.type)) << element("td", port.value) << element("td", range)
          << element("td", kind) << element("td", port.description);
    return element("tr", cells);
  }

  Markup profile(const Fragment& fragment, std::size_t index) const {
    const Profile& profile = fragment.profiles[index];
    const std::string title =
        "Profile " + profile.name + ", level " + profile.level + " (" + profile.languages + ")";
    Markup content = element("h3", title);
    std::string mode = profile.mode;
    if (!mode.empty() && mode != "function") content << element("p", "Mode: " + mode);
    if (!profile.includes.empty()) {
      Markup list = "Includes:";
      for (const std::string& name : profile.includes) {
        const auto known = includeOf_.find(name);
        list << " "
             << (known != includeOf_.end() ? link("../" + known->second, name) : element("code", name));
      }
      content << element("p", list);
    }
    return content << codeBox("Code of " + fragment.name + ", " + title, coloredCode(profile.code));
  }

  Markup uses(const Fragment& fragment) const {
    if (fragment.examples.empty()) return element("p", "In none of the examples.");
    Markup list;
    for (const std::size_t example : fragment.examples) list << element("li", exampleLink("../", example));
    return element("ul", list);
  }

  Markup exampleLink(const std::string& up, std::size_t example) const {
    return link(up + "gallery.html#" + anchors_[example], site_.examples[example].name);
  }

  Markup neighbours(std::size_t index) const {
    Markup list;
    const auto add = [&](const char* what, std::size_t other) {
      Markup item = what;
      item << " " << link("../" + fragmentPage(other), site_.fragments[other].name);
      list << element("li", item);
    };
    if (index > 0) add("Before:", index - 1);
    if (index + 1 < site_.fragments.size()) add("Next:", index + 1);
    return list.isEmpty() ? list : element("nav", {{"aria-label", "Neighbours"}}, element("ul", list));
  }

  // Examples

  Markup gallery() const {
    Markup content;
    for (const bool isEnvironment : {false, true}) {
      Markup cards;
      for (std::size_t i = 0; i < site_.examples.size(); ++i) {
        if (site_.examples[i].isEnvironment == isEnvironment) cards << card(i);
      }
      if (cards.isEmpty()) continue;
      content << element("h2", isEnvironment ? "Environments" : "Materials")
              << element("div", {{"class", "cards"}}, cards);
    }
    return content;
  }

  Markup card(std::size_t index) const {
    const Example& example = site_.examples[index];
    Markup content = element("h3", example.name);
    content << element("p", example.description);
    Markup figures;
    for (const Shown& picture : example.pictures)
      figures << figure("", picture, example.name + " under " + picture.caption);
    if (!figures.isEmpty()) content << element("div", {{"class", "pictures"}}, figures);
    Markup list;
    for (const std::string& name : example.fragments) {
      const auto known = pageOf_.find(name);
      if (known != pageOf_.end()) list << element("li", link(known->second, name));
    }
    if (!list.isEmpty()) {
      Markup used = element("summary", "Fragments of " + example.name);
      content << element("details", used << element("ul", list));
    }
    Markup text = element("summary", "Text of " + example.name);
    content << element("details", text << codeBox("Text of " + example.name, example.text));
    return element("article", {{"id", anchors_[index]}}, content);
  }

  // Include files

  Markup includes() const {
    Markup list;
    for (const IncludeFile& include : site_.includes)
      list << element("li", link(includeOf_.at(include.name), include.name));
    return element("ul", list);
  }

  Markup includePage(const IncludeFile& include) const {
    Markup list;
    for (std::size_t i = 0; i < site_.fragments.size(); ++i) {
      const auto& profiles = site_.fragments[i].profiles;
      const bool includesIt = std::any_of(profiles.begin(), profiles.end(), [&](const Profile& profile) {
        return std::count(profile.includes.begin(), profile.includes.end(), include.name) > 0;
      });
      if (includesIt) list << element("li", link("../" + fragmentPage(i), site_.fragments[i].name));
    }
    Markup content = element("h2", "Code");
    content << codeBox("Code of " + include.name, coloredCode(include.text)) << element("h2", "Included by");
    content << (list.isEmpty() ? element("p", "No fragment.") : element("ul", {{"class", "names"}}, list));
    return content;
  }

  const Site& site_;
  std::vector<std::string> files_;
  std::map<std::string, std::string> pageOf_;
  std::map<std::string, std::string> includeOf_;
  std::vector<std::string> anchors_;
  std::map<std::string, std::string> pages_;
};

}  // namespace

std::string fileNameOf(const std::string& name, std::map<std::string, int>& taken) {
  std::string file;
  for (const char c : name.substr(0, 100)) {
    const bool isPlain = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
    file += isPlain ? c : '-';
  }
  if (file.empty()) file = "-";
  // File systems that do not tell capitals from small letters have one file for both.
  for (int uses = taken[lowered(file)]++; uses > 0; uses = taken[lowered(file)]++)
    file.append("-").append(std::to_string(uses + 1));
  return file;
}

std::vector<std::string> fragmentFiles(const Site& site) {
  std::map<std::string, int> taken;
  std::vector<std::string> files;
  for (const Fragment& fragment : site.fragments) files.push_back(fileNameOf(fragment.name, taken));
  return files;
}

std::map<std::string, std::string> pagesOf(const Site& site) { return Printer(site).print(); }

}  // namespace TolmSDK::Graphics::sfg::site
