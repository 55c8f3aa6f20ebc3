#ifndef VARN_BENCHMARKS_PACKAGING_MEASUREMENTS_HPP
#define VARN_BENCHMARKS_PACKAGING_MEASUREMENTS_HPP

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

// The subject of a measurement: a workload and the contender that ran it.
struct Subject {
  std::string workload;
  std::string contender;

  bool operator<(const Subject& other) const {
    return workload != other.workload ? workload < other.workload : contender < other.contender;
  }
};

// The measurements of one process: those that are entered directly, and the times of the
// registered benchmarks, entered while they run.
class Measurements : public benchmark::BenchmarkReporter {
 public:
  // Registers a benchmark that processes `items` items in one iteration.
  void addBenchmark(const Subject& subject, std::size_t items,
                    const std::function<void(benchmark::State&)>& body);
  // Enter a measurement made without a benchmark, in bytes or nanoseconds.
  void addMemory(const Subject& subject, double bytes);
  void addTime(const Subject& subject, double nanoseconds);

  // Bytes, or nanoseconds of thread CPU time per item: the median of the repetitions.
  // Throws std::out_of_range for a subject that was not measured.
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

  // The series of `subject`, created if it does not exist.
  Series& seriesOf(const Subject& subject, std::size_t items, bool isTime);

  std::vector<Series> series_;
  std::map<Subject, std::size_t> positions_;
};

}  // namespace bench

#endif
