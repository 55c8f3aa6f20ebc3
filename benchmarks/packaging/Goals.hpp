#ifndef VARN_BENCHMARKS_PACKAGING_GOALS_HPP
#define VARN_BENCHMARKS_PACKAGING_GOALS_HPP

#include "Measurements.hpp"

namespace bench {

// Prints, as a Markdown table, each goal with what was measured and whether it holds.
void printGoals(const Measurements& measurements);

}  // namespace bench

#endif
