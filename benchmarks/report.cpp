#include "benchmarks/report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

constexpr std::size_t kGrowthFrom = 1000;

std::optional<double> find(const Outcome& outcome, const char* name) {
  const auto found = outcome.figures.find(name);
  return found != outcome.figures.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<double> quotient(const Outcome& outcome, const char* name, const char* by) {
  const std::optional<double> dividend = find(outcome, name);
  const std::optional<double> divisor = find(outcome, by);
  return dividend && divisor ? std::optional(*dividend / *divisor) : std::nullopt;
}

std::string text(const std::optional<double>& value, const char* format) {
  char out[32];
  std::snprintf(out, sizeof out, format, value.value_or(0.0));
  return value ? out : "-";
}

/// A cell for each allocator, in one.
template <class Value>
std::string pairCell(const Row& row, const Value& value, const char* format) {
  std::string cell;
  for (const auto& [allocator, outcome] : row.outcomes) {
    cell += (cell.empty() ? "" : " / ") + text(value(outcome), format);
  }
  return cell;
}

/// What the first time is compared with: the yardstick, or the reference of work that writes no text.
std::optional<double> ratio(const Outcome& outcome, const char* name) {
  const std::optional<double> toYardstick = quotient(outcome, name, "yardstick");
  return toYardstick ? toYardstick : quotient(outcome, name, "reference");
}

/// Rows of one case and state with figures, in order of size.
struct Family {
  std::string title;
  std::vector<Row> rows;
  std::string stopped;  ///< why there are no more
};

std::vector<Family> families(const std::vector<Row>& rows) {
  std::vector<Family> families;
  std::map<std::string, std::size_t> indexes;
  for (const Row& row : rows) {
    if (row.size == 0 || row.failed()) continue;
    const std::string title = row.state.empty() ? row.caseName : row.caseName + ", " + row.state;
    const auto [found, isNew] = indexes.try_emplace(title, families.size());
    if (isNew) families.push_back({title, {}, {}});
    Family& family = families[found->second];
    if (!row.stopped()) {
      family.rows.push_back(row);
    } else {
      for (const auto& [allocator, outcome] : row.outcomes) {
        if (!outcome.stopped.empty()) family.stopped = std::to_string(row.size) + ": " + outcome.stopped;
      }
    }
  }
  return families;
}

/// Exponent of a figure's growth with `by`, or with N without it.
std::optional<double> exponent(const Row& small, const Row& large, const std::string& allocator,
                               const char* name, const char* by = nullptr) {
  const Outcome& from = small.outcomes.at(allocator);
  const Outcome& to = large.outcomes.at(allocator);
  const std::optional<double> start = find(from, name);
  const std::optional<double> end = find(to, name);
  if (!start || !end) return std::nullopt;
  double factor = static_cast<double>(large.size) / static_cast<double>(small.size);
  if (by != nullptr) {
    if (!find(from, by)) return std::nullopt;
    factor = *find(to, by) / *find(from, by);
  }
  return factor > 1 ? std::optional(std::log(*end / *start) / std::log(factor)) : std::nullopt;
}

void printGrowth(const Family& family) {
  const std::vector<Row>& rows = family.rows;
  const Row& last = rows.back();
  // From the first size that is no longer lost in fixed costs; the last step where all are smaller.
  auto from = std::find_if(rows.begin(), rows.end(), [](const Row& row) { return row.size >= kGrowthFrom; });
  if (rows.end() - from < 2) from = rows.end() - 2;
  std::string steps;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const std::string& allocator = last.outcomes.begin()->first;
    steps += text(exponent(rows[i - 1], rows[i], allocator, "best"), "%5.2f ");
  }
  const auto overall = [&](const char* name, const char* by = nullptr) {
    std::string cell;
    for (const auto& [allocator, outcome] : last.outcomes) {
      cell += (cell.empty() ? "" : " / ") + text(exponent(*from, last, allocator, name, by), "%.2f");
    }
    return cell;
  };
  std::printf("%-24s %6zu .. %7zu  %-31s %11s %13s %11s %11s  %s\n", family.title.c_str(), from->size,
              last.size, steps.c_str(), overall("best").c_str(), overall("best", "characters").c_str(),
              overall("yardstick").c_str(), overall("emitter").c_str(), family.stopped.c_str());
}

/// Maps values to a logarithmic axis of a given length.
class LogAxis {
public:
  LogAxis(double low, double high, double from, double to)
      : low_(std::floor(std::log10(low))),
        high_(std::max(std::ceil(std::log10(high)), std::floor(std::log10(low)) + 1)), from_(from), to_(to) {}
  double at(double value) const {
    return from_ + (std::log10(value) - low_) / (high_ - low_) * (to_ - from_);
  }
  int firstDecade() const { return static_cast<int>(low_); }
  int lastDecade() const { return static_cast<int>(high_); }

private:
  double low_;
  double high_;
  double from_;
  double to_;
};

constexpr double kWidth = 960, kHeight = 1000, kLeft = 80, kRight = 700, kTop = 30, kBottom = 940;

std::string durationText(int decade) {
  static const char* const kTexts[] = {"1 ns", "10 ns", "100 ns", "1 µs", "10 µs", "100 µs",
                                       "1 ms", "10 ms", "100 ms", "1 s",  "10 s",  "100 s"};
  const int index = decade + 9;
  return index >= 0 && index < 12 ? kTexts[index] : "1e" + std::to_string(decade) + " s";
}

void writeGrid(std::ostream& out, const LogAxis& sizes, const LogAxis& times) {
  for (int decade = sizes.firstDecade(); decade <= sizes.lastDecade(); ++decade) {
    const double x = sizes.at(std::pow(10.0, decade));
    out << "<line x1='" << x << "' y1='" << kTop << "' x2='" << x << "' y2='" << kBottom
        << "' stroke='#ddd'/>\n"
        << "<text x='" << x << "' y='" << kBottom + 20 << "' text-anchor='middle'>" << std::pow(10.0, decade)
        << "</text>\n";
  }
  for (int decade = times.firstDecade(); decade <= times.lastDecade(); ++decade) {
    const double y = times.at(std::pow(10.0, decade));
    out << "<line x1='" << kLeft << "' y1='" << y << "' x2='" << kRight << "' y2='" << y
        << "' stroke='#ddd'/>\n"
        << "<text x='" << kLeft - 8 << "' y='" << y + 4 << "' text-anchor='end'>" << durationText(decade)
        << "</text>\n";
  }
  out << "<text x='" << (kLeft + kRight) / 2 << "' y='" << kBottom + 44
      << "' text-anchor='middle'>N</text>\n";
}

}  // namespace

bool Row::failed() const {
  return std::any_of(outcomes.begin(), outcomes.end(),
                     [](const auto& one) { return !one.second.failed.empty(); });
}

double growthExponent(const Row& small, const Row& large) {
  return exponent(small, large, large.outcomes.begin()->first, "best").value_or(1.0);
}

bool Row::stopped() const {
  return std::any_of(outcomes.begin(), outcomes.end(),
                     [](const auto& one) { return !one.second.stopped.empty(); });
}

void printHeading(bool hasStates) {
  std::printf("%-18s %7s ", "case", "N");
  if (hasStates) std::printf("%-10s ", "state");
  std::printf("%21s %13s %13s %13s %11s %6s %8s %13s %13s\n", "time, ms", "copy", "emit", "first",
              "characters", "B/char", "allocs", "gain", "plain");
}

void printRow(const Row& row, bool hasStates) {
  std::printf("%-18s %7zu ", row.caseName.c_str(), row.size);
  if (hasStates) std::printf("%-10s ", row.state.c_str());
  for (const auto& [allocator, outcome] : row.outcomes) {
    if (outcome.figures.empty()) {
      std::printf("%s: %s%s\n", outcome.failed.empty() ? "stopped" : "failed", outcome.stopped.c_str(),
                  outcome.failed.c_str());
      std::fflush(stdout);
      return;
    }
  }
  const auto figure = [](const char* name) {
    return [name](const Outcome& outcome) { return find(outcome, name); };
  };
  const auto ratioOf = [](const char* name) {
    return [name](const Outcome& outcome) { return ratio(outcome, name); };
  };
  const auto milliseconds = [](const Outcome& outcome) {
    const std::optional<double> best = find(outcome, "best");
    return best ? std::optional(*best * 1e3) : std::nullopt;
  };
  const auto toEmitter = [](const Outcome& outcome) { return quotient(outcome, "best", "emitter"); };
  const Outcome& first = row.outcomes.begin()->second;
  const auto threads = [&](const char* processor, const char* wall) {
    return find(first, processor)
               ? text(find(first, processor), "%.2f") + " / " + text(find(first, wall), "%.2f")
               : "-";
  };
  std::printf("%21s %13s %13s %13s %11s %6s %8s %13s %13s\n", pairCell(row, milliseconds, "%.3f").c_str(),
              pairCell(row, ratioOf("best"), "%.2f").c_str(), pairCell(row, toEmitter, "%.2f").c_str(),
              pairCell(row, ratioOf("first"), "%.2f").c_str(),
              text(figure("characters")(first), "%.0f").c_str(),
              text(figure("bytesPerChar")(first), "%.1f").c_str(),
              text(figure("allocsPerFragment")(first), "%.1f").c_str(), threads("gain", "wallGain").c_str(),
              threads("plainGain", "plainWallGain").c_str());
  std::fflush(stdout);
}

void printComparison(const Row& before, const Row& now) {
  const Outcome missing;
  std::string cell;
  for (const auto& [allocator, outcome] : now.outcomes) {
    const auto found = before.outcomes.find(allocator);
    const std::optional<double> from = find(found != before.outcomes.end() ? found->second : missing, "best");
    const std::optional<double> to = find(outcome, "best");
    cell +=
        (cell.empty() ? "" : " / ") + text(from && to ? std::optional(*to / *from) : std::nullopt, "%.3f");
  }
  std::printf("%-18s %7zu %-10s %21s\n", now.caseName.c_str(), now.size, "now/before", cell.c_str());
}

void printGrowth(const std::vector<Row>& rows) {
  bool headed = false;
  for (const Family& family : families(rows)) {
    if (family.rows.size() < 2) continue;
    if (!headed) {
      std::printf("\n%-24s %17s  %-31s %11s %13s %11s %11s  %s\n", "growth (1 is linear)", "from .. to",
                  "from size to size", "time", "by characters", "copy", "emit", "stopped at");
    }
    headed = true;
    printGrowth(family);
  }
}

bool writeJson(const std::string& file, const std::vector<Row>& rows) {
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (const Row& row : rows) {
    for (const auto& [allocator, outcome] : row.outcomes) {
      all.push_back({{"case", row.caseName}, {"size", row.size}, {"malloc", allocator}});
      if (!row.state.empty()) all.back()["state"] = row.state;
      if (!outcome.stopped.empty()) all.back()["stopped"] = outcome.stopped;
      if (!outcome.failed.empty()) all.back()["failed"] = outcome.failed;
      for (const auto& [name, value] : outcome.figures) all.back()[name] = value;
    }
  }
  std::ofstream out(file);
  out << all.dump(1) << '\n';
  return static_cast<bool>(out.flush());
}

bool writePlot(const std::string& file, const std::vector<Row>& rows) {
  std::vector<Family> drawn = families(rows);
  std::erase_if(drawn, [](const Family& family) { return family.rows.size() < 2; });
  if (drawn.empty()) return true;

  const auto secondsOf = [](const Row& row) { return *find(row.outcomes.begin()->second, "best"); };
  double lowTime = HUGE_VAL, highTime = 0, lowSize = HUGE_VAL, highSize = 0;
  for (const Family& family : drawn) {
    for (const Row& row : family.rows) {
      lowTime = std::min(lowTime, secondsOf(row));
      highTime = std::max(highTime, secondsOf(row));
      lowSize = std::min(lowSize, static_cast<double>(row.size));
      highSize = std::max(highSize, static_cast<double>(row.size));
    }
  }
  const LogAxis sizes(lowSize, highSize, kLeft, kRight);
  const LogAxis times(lowTime, highTime, kBottom, kTop);

  std::ofstream out(file);
  out << "<svg xmlns='http://www.w3.org/2000/svg' width='" << kWidth << "' height='" << kHeight
      << "' font-family='sans-serif' font-size='12'>\n<rect width='100%' height='100%' fill='white'/>\n";
  writeGrid(out, sizes, times);
  std::size_t index = 0;
  for (const Family& family : drawn) {
    const std::string color = "hsl(" + std::to_string(index * 137 % 360) + ",70%,40%)";
    out << "<polyline fill='none' stroke-width='2' stroke='" << color << "' points='";
    for (const Row& row : family.rows) {
      out << sizes.at(static_cast<double>(row.size)) << ',' << times.at(secondsOf(row)) << ' ';
    }
    out << "'/>\n<text x='" << kRight + 12 << "' y='" << kTop + 14 + 20 * static_cast<double>(index)
        << "' fill='" << color << "'>" << family.title << "</text>\n";
    ++index;
  }
  out << "</svg>\n";
  return static_cast<bool>(out.flush());
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks
