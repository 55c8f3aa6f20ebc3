#include "Goals.hpp"

#include <cstdio>

namespace bench {
namespace {

enum class Level { Must, Reach };

enum class Measure {
  // The contender over the library: how many times faster the library is. At least the bound.
  TimesFaster,
  // The library over the contender. At most the bound.
  TimesAsMuch,
  // The library less the contender, in nanoseconds. At most the bound.
  NanosecondsMore,
  // The library's own figure, in bytes. At most the bound.
  Bytes,
};

struct Goal {
  Level level;
  Measure measure;
  double bound;
  const char* workload;
  const char* contender;
  // Where they are not the workload's "varn" and its contender.
  const char* library = "varn";
  const char* contenderWorkload = nullptr;
};

constexpr auto Must = Level::Must;
constexpr auto Reach = Level::Reach;
constexpr auto TimesFaster = Measure::TimesFaster;
constexpr auto TimesAsMuch = Measure::TimesAsMuch;
constexpr auto NanosecondsMore = Measure::NanosecondsMore;
constexpr auto Bytes = Measure::Bytes;

constexpr Goal goals[] = {
    {Must, TimesFaster, 3.0, "append a piece, 8 B", "literal"},
    {Must, TimesFaster, 3.0, "append a piece, 64 B", "literal"},
    {Must, TimesFaster, 3.0, "append a piece, mixed", "literal"},
    {Must, TimesAsMuch, 1.0, "append a piece, 64 B", "ostringstream"},
    {Must, TimesAsMuch, 1.0, "append a piece, mixed", "ostringstream"},
    {Reach, TimesAsMuch, 0.8, "append a piece, mixed", "string"},
    {Must, Bytes, 64.0, "memory of a piece over its text, 8 B", nullptr},
    {Must, Bytes, 64.0, "memory of a piece over its text, 64 B", nullptr},
    {Must, Bytes, 64.0, "memory of a piece over its text, mixed", nullptr},
    {Must, TimesFaster, 2.2, "whole text, mixed", "literal"},
    {Must, TimesAsMuch, 2.2, "whole text, mixed", "string"},
    {Reach, TimesAsMuch, 1.5, "whole text, mixed", "string"},
    {Must, TimesFaster, 1.5, "write all pieces, 64 B", "literal"},
    {Must, TimesFaster, 1.5, "write all pieces, mixed", "literal"},
    {Reach, TimesAsMuch, 1.6, "write all pieces, mixed", "string"},
    {Must, TimesAsMuch, 1.0, "run, a file of 1,000", "strings"},
    {Must, TimesAsMuch, 1.0, "run, a file of 1,000", "strings, the library's look-up"},
    {Must, TimesFaster, 2.4, "run, a file of 1,000", "literal"},
    {Must, TimesFaster, 1.2, "run, a file of 1,000", "ostringstream"},
    {Must, TimesFaster, 1.8, "run, a file of 1,000", "Cord"},
    {Must, TimesFaster, 1.8, "run, a file of 1,000", "Printer"},
    {Must, TimesAsMuch, 1.25, "memory of a run's file", "strings"},
    {Must, TimesAsMuch, 1.0, "run in a new process, a file of 1,000", "strings"},
    {Must, TimesAsMuch, 1.0, "run in a new process, a file of 1,000",
     "strings, the library's look-up"},
    {Must, TimesAsMuch, 1.15, "run, a file of 10,000", "varn", "varn", "run, a file of 1,000"},
    {Reach, TimesAsMuch, 0.85, "run, a file of 1,000", "strings"},
    {Reach, TimesAsMuch, 2.2, "run, a file of 1,000", "limit"},
    {Must, TimesFaster, 2.5, "includes, 10", "literal"},
    {Must, TimesFaster, 15.0, "includes, 100", "literal"},
    {Must, TimesFaster, 120.0, "includes, 1000", "literal"},
    {Must, TimesFaster, 550.0, "includes, 5000", "literal"},
    {Reach, TimesAsMuch, 2.0, "includes, 10", "every line"},
    {Reach, TimesAsMuch, 2.0, "includes, 100", "every line"},
    {Reach, TimesAsMuch, 2.0, "includes, 1000", "every line"},
    {Reach, TimesAsMuch, 2.0, "includes, 5000", "every line"},
    {Must, NanosecondsMore, 15.0, "attribute by name, random order", "virtual call"},
    {Must, NanosecondsMore, 7.0, "attribute by name, runs", "virtual call"},
    {Must, NanosecondsMore, 15.0, "section by name, random order", "virtual call"},
    {Must, NanosecondsMore, 7.0, "section by name, runs", "virtual call"},
    {Must, TimesAsMuch, 1.05, "section by name, number of files", "10 files", "100,000 files"},
    {Reach, TimesAsMuch, 1.0, "attribute by name, random order", "flat_hash_map"},
    {Reach, TimesAsMuch, 1.0, "attribute by name, runs", "flat_hash_map"},
    {Reach, TimesAsMuch, 1.0, "section by name, random order", "flat_hash_map"},
    {Reach, TimesAsMuch, 1.0, "section by name, runs", "flat_hash_map"},
    {Must, TimesAsMuch, 1.0, "memory of a nearly empty file", "literal"},
    {Reach, TimesAsMuch, 0.5, "memory of a nearly empty file", "literal"},
};

double contenderOf(const Goal& goal, const Measurements& measurements) {
  const char* workload = goal.contenderWorkload != nullptr ? goal.contenderWorkload : goal.workload;
  return measurements.median({workload, goal.contender});
}

double measured(const Goal& goal, const Measurements& measurements) {
  const double library = measurements.median({goal.workload, goal.library});
  switch (goal.measure) {
    case Measure::TimesFaster:
      return contenderOf(goal, measurements) / library;
    case Measure::TimesAsMuch:
      return library / contenderOf(goal, measurements);
    case Measure::NanosecondsMore:
      return library - contenderOf(goal, measurements);
    case Measure::Bytes:
      break;
  }
  return library;
}

void printGoal(const Goal& goal, double value) {
  const bool holds =
      goal.measure == Measure::TimesFaster ? value >= goal.bound : value <= goal.bound;
  const char* level = goal.level == Level::Must ? "must" : "reach";
  std::printf("| %s | %s | ", goal.workload, level);
  switch (goal.measure) {
    case Measure::TimesFaster:
      std::printf("at least %g times faster than %s | %.2f", goal.bound, goal.contender, value);
      break;
    case Measure::TimesAsMuch:
      std::printf("at most %g times %s | %.2f", goal.bound,
                  goal.contenderWorkload != nullptr ? goal.contenderWorkload : goal.contender,
                  value);
      break;
    case Measure::NanosecondsMore:
      std::printf("at most %s plus %g ns | %.1f ns", goal.contender, goal.bound, value);
      break;
    case Measure::Bytes:
      std::printf("at most %g B | %.1f B", goal.bound, value);
      break;
  }
  std::printf(" | %s |\n", holds ? "holds" : "MISSED");
}

}  // namespace

void printGoals(const Measurements& measurements) {
  std::printf("| workload | level | goal | measured | |\n|---|---|---|---:|---|\n");
  for (const Goal& goal : goals) printGoal(goal, measured(goal, measurements));
}

}  // namespace bench
