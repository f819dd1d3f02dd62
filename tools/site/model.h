#pragma once

// What a site shows, as plain data: read from a library set and graphs, printed as pages.

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::site {

struct Port {
  enum class Role { input, uniform, output };
  Role role = Role::input;
  std::string name;
  std::string type;
  std::string label;
  std::string description;
  std::string kind;
  std::string space;
  std::string value;  ///< "0.5", "(1, 0, 0)"; empty without one
  std::string range;  ///< "0 to 1", "at least 0"
  std::string step;
};

struct Profile {
  std::string name;
  std::string level;
  std::string languages;
  std::string mode;  ///< empty for a function
  std::vector<std::string> includes;
  std::string code;
};

/// A PNG file of the site.
struct Shown {
  std::string file;     ///< from the root of the site
  std::string caption;  ///< "level 100"
};

struct Fragment {
  std::string name;
  std::string description;
  std::string source;
  std::string topic;  ///< name of its library file, without folder and ending
  std::string place;  ///< name of that file, and line
  std::vector<Port> ports;
  std::vector<Profile> profiles;
  std::vector<Shown> pictures;
  std::vector<std::size_t> examples;  ///< that use it
};

struct IncludeFile {
  std::string name;
  std::string text;
};

/// A graph, or an environment with its lights.
struct Example {
  std::string name;
  std::string file;  ///< where it was read
  std::string description;
  std::string text;
  std::set<std::string> fragments;
  std::vector<Shown> pictures;
  bool isEnvironment = false;
};

struct Site {
  std::string title;
  std::vector<Fragment> fragments;  ///< in order of names
  std::vector<IncludeFile> includes;
  std::vector<Example> examples;
};

}  // namespace TolmSDK::Graphics::sfg::site
