#include "benchmarks/report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

constexpr double kGrowthFrom = 1000;

/// Families with sizes, each in order of size.
std::map<std::string, std::vector<Measurement>> byFamily(const std::vector<Measurement>& measurements) {
  std::map<std::string, std::vector<Measurement>> families;
  for (const Measurement& measurement : measurements) {
    if (measurement.size > 0) families[measurement.family].push_back(measurement);
  }
  for (auto& [name, runs] : families) {
    std::sort(runs.begin(), runs.end(), [](const auto& a, const auto& b) { return a.size < b.size; });
  }
  return families;
}

Measurement measurementOf(const benchmark::BenchmarkReporter::Run& run) {
  Measurement measurement;
  const std::string& arguments = run.run_name.args;
  measurement.family = run.run_name.function_name;
  if (!arguments.empty()) measurement.size = std::stod(arguments);
  measurement.seconds =
      run.real_accumulated_time / static_cast<double>(std::max<benchmark::IterationCount>(run.iterations, 1));
  measurement.counters = run.counters;
  return measurement;
}

std::string cell(const benchmark::UserCounters& counters, const char* name, const char* format) {
  const auto found = counters.find(name);
  if (found == counters.end()) return "-";
  char text[32];
  std::snprintf(text, sizeof text, format, static_cast<double>(found->second));
  return text;
}

/// A counter that holds seconds; the mean time of a case without it.
double secondsOf(const Measurement& measurement, const char* counter) {
  const auto found = measurement.counters.find(counter);
  return found != measurement.counters.end() ? static_cast<double>(found->second) : measurement.seconds;
}

/// Two gains, by processor time and by the clock on the wall.
std::string pairCell(const benchmark::UserCounters& counters, const char* processor, const char* wall) {
  if (!counters.contains(processor)) return "-";
  return cell(counters, processor, "%.2f") + " / " + cell(counters, wall, "%.2f");
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

constexpr double kWidth = 900, kHeight = 560, kLeft = 80, kRight = 700, kTop = 30, kBottom = 500;

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

bool TableReporter::ReportContext(const Context&) {
  std::printf("%-18s %8s %12s %7s %7s %10s %7s %7s %6s %11s %11s\n", "case", "N", "time", "ratio", "first",
              "characters", "B/char", "allocs", "share", "gain", "plain");
  return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.error_occurred) {
      std::printf("%-18s failed: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
      anyFailed_ = true;
      continue;
    }
    const Measurement row = measurementOf(run);
    std::printf("%-18s %8.0f %9.3f ms %7s %7s %10s %7s %7s %6s %11s %11s\n", row.family.c_str(), row.size,
                row.seconds * 1e3, cell(row.counters, "ratio", "%.2f").c_str(),
                cell(row.counters, "first", "%.2f").c_str(), cell(row.counters, "characters", "%.0f").c_str(),
                cell(row.counters, "bytesPerChar", "%.1f").c_str(),
                cell(row.counters, "allocsPerFragment", "%.1f").c_str(),
                cell(row.counters, "share", "%.2f").c_str(),
                pairCell(row.counters, "gain", "wallGain").c_str(),
                pairCell(row.counters, "plainGain", "plainWallGain").c_str());
    std::fflush(stdout);
    measurements_.push_back(row);
  }
}

void TableReporter::Finalize() {
  bool headed = false;
  for (const auto& [name, runs] : byFamily(measurements_)) {
    const auto from =
        std::find_if(runs.begin(), runs.end(), [](const auto& run) { return run.size >= kGrowthFrom; });
    if (from == runs.end() || from->size == runs.back().size) continue;
    if (!headed) std::printf("\ngrowth (1 is linear)\n");
    headed = true;
    std::printf("%-18s %6.0f .. %6.0f: %.3f", name.c_str(), from->size, runs.back().size,
                growthExponent(*from, runs.back(), "best"));
    if (from->counters.contains("yardstick"))
      std::printf("   yardstick %.3f", growthExponent(*from, runs.back(), "yardstick"));
    std::printf("\n");
  }
}

double growthExponent(const Measurement& small, const Measurement& large, const char* counter) {
  return std::log(secondsOf(large, counter) / secondsOf(small, counter)) / std::log(large.size / small.size);
}

bool writePlot(const std::string& file, const std::vector<Measurement>& measurements) {
  auto families = byFamily(measurements);
  std::erase_if(families, [](const auto& family) { return family.second.size() < 2; });
  if (families.empty()) return true;

  double lowTime = HUGE_VAL, highTime = 0, lowSize = HUGE_VAL, highSize = 0;
  for (const auto& [name, runs] : families) {
    for (const Measurement& run : runs) {
      lowTime = std::min(lowTime, run.seconds);
      highTime = std::max(highTime, run.seconds);
      lowSize = std::min(lowSize, run.size);
      highSize = std::max(highSize, run.size);
    }
  }
  const LogAxis sizes(lowSize, highSize, kLeft, kRight);
  const LogAxis times(lowTime, highTime, kBottom, kTop);

  std::ofstream out(file);
  out << "<svg xmlns='http://www.w3.org/2000/svg' width='" << kWidth << "' height='" << kHeight
      << "' font-family='sans-serif' font-size='12'>\n<rect width='100%' height='100%' fill='white'/>\n";
  writeGrid(out, sizes, times);
  static const char* const kColors[] = {"#1b6ca8", "#c1121f", "#2a9d34", "#8a4fbf",
                                        "#e07a00", "#00838f", "#6d4c41"};
  std::size_t index = 0;
  for (const auto& [name, runs] : families) {
    const char* color = kColors[index % std::size(kColors)];
    out << "<polyline fill='none' stroke-width='2' stroke='" << color << "' points='";
    for (const Measurement& run : runs) out << sizes.at(run.size) << ',' << times.at(run.seconds) << ' ';
    out << "'/>\n<text x='" << kRight + 12 << "' y='" << kTop + 14 + 20 * static_cast<double>(index)
        << "' fill='" << color << "'>" << name << "</text>\n";
    ++index;
  }
  out << "</svg>\n";
  return static_cast<bool>(out.flush());
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks
