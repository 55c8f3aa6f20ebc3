#ifndef VARN_BENCHMARKS_PACKAGING_MEASUREMENTS_HPP
#define VARN_BENCHMARKS_PACKAGING_MEASUREMENTS_HPP

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

// What was measured: of which workload, done by whom.
struct Subject {
  std::string workload;
  std::string contender;

  bool operator<(const Subject& other) const {
    return workload != other.workload ? workload < other.workload : contender < other.contender;
  }
};

// The measurements of one process: those that are entered as they are made, and the times of the
// benchmarks that were registered here, entered while they run.
class Measurements : public benchmark::BenchmarkReporter {
 public:
  // Registers a benchmark whose one iteration does `items` things.
  void addBenchmark(const Subject& subject, std::size_t items,
                    const std::function<void(benchmark::State&)>& body);
  // Enter a measurement of what no benchmark measures, in bytes or nanoseconds.
  void addMemory(const Subject& subject, double bytes);
  void addTime(const Subject& subject, double nanoseconds);

  // Bytes, or nanoseconds of thread CPU time for one thing: the median of the repetitions.
  // Throws std::out_of_range for what was not measured.
  double median(const Subject& subject) const;

  // All medians in the order of registration, as a Markdown table.
  void printTable() const;

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

 private:
  struct Series {
    Subject subject;
    double items;
    bool isTime;
    std::vector<double> values;
  };

  // The series of `subject`, begun unless it is there.
  Series& seriesOf(const Subject& subject, std::size_t items, bool isTime);

  std::vector<Series> series_;
  std::map<Subject, std::size_t> positions_;
};

}  // namespace bench

#endif
