#include "Measurements.hpp"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace bench {
namespace {

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values.at(middle)
                                : (values.at(middle - 1) + values.at(middle)) / 2;
}

// The interquartile range of the values, in percent of the median.
double spreadOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const double low = values.at(values.size() / 4);
  const double high = values.at(values.size() - 1 - values.size() / 4);
  return 100.0 * (high - low) / medianOf(values);
}

std::string formatAmount(double amount, bool isTime) {
  static const char* const times[] = {"ns", "us", "ms"};
  static const char* const sizes[] = {"B", "kB", "MB"};
  std::size_t unit = 0;
  while (amount >= 1000.0 && unit < 2) {
    amount /= 1000.0;
    ++unit;
  }
  char text[32];
  static_cast<void>(std::snprintf(text, sizeof(text), amount < 100.0 ? "%.1f %s" : "%.0f %s",
                                  amount, isTime ? times[unit] : sizes[unit]));
  return text;
}

}  // namespace

void Measurements::addBenchmark(const Subject& subject, std::size_t items,
                                const std::function<void(benchmark::State&)>& body) {
  seriesOf(subject, items, true);
  const std::string name = subject.workload + '/' + subject.contender;
  benchmark::RegisterBenchmark(name.c_str(), body);
}

void Measurements::addMemory(const Subject& subject, double bytes) {
  seriesOf(subject, 1, false).values.push_back(bytes);
}

void Measurements::addTime(const Subject& subject, double nanoseconds) {
  seriesOf(subject, 1, true).values.push_back(nanoseconds);
}

double Measurements::median(const Subject& subject) const {
  const auto found = positions_.find(subject);
  if (found == positions_.end()) {
    throw std::out_of_range("not measured: " + subject.workload + '/' + subject.contender);
  }
  return medianOf(series_[found->second].values);
}

void Measurements::printTable() const {
  std::printf("| workload | contender | median | spread |\n|---|---|---:|---:|\n");
  for (const Series& series : series_) {
    if (series.values.empty()) continue;
    std::printf("| %s | %s | %s | ", series.subject.workload.c_str(),
                series.subject.contender.c_str(),
                formatAmount(medianOf(series.values), series.isTime).c_str());
    if (series.isTime) std::printf("%.0f %%", spreadOf(series.values));
    std::printf(" |\n");
  }
}

bool Measurements::ReportContext(const Context& /*context*/) { return true; }

void Measurements::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) continue;
    if (run.error_occurred) throw std::runtime_error(run.benchmark_name() + run.error_message);
    const std::string& name = run.run_name.function_name;
    const std::size_t slash = name.rfind('/');
    Series& series = series_[positions_.at({name.substr(0, slash), name.substr(slash + 1)})];
    series.values.push_back(run.cpu_accumulated_time * 1e9 /
                            (static_cast<double>(run.iterations) * series.items));
  }
}

Measurements::Series& Measurements::seriesOf(const Subject& subject, std::size_t items,
                                             bool isTime) {
  const auto [position, isNew] = positions_.emplace(subject, series_.size());
  if (isNew) series_.push_back({subject, static_cast<double>(items), isTime, {}});
  return series_[position->second];
}

}  // namespace bench
