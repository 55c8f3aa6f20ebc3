#ifndef VARN_BENCHMARKS_PACKAGING_WORKLOADS_HPP
#define VARN_BENCHMARKS_PACKAGING_WORKLOADS_HPP

#include "Inputs.hpp"
#include "Measurements.hpp"
#include "ScratchFolder.hpp"

namespace bench {

// Each makes its inputs, checks that all contenders give the same bytes (std::logic_error if they
// do not), measures memory at once and registers its benchmarks, which refer to `folder`.

void addSectionWorkloads(Measurements& measurements, const Scale& scale,
                         const ScratchFolder& folder);
void addRunWorkload(Measurements& measurements, const Scale& scale, const ScratchFolder& folder);
void addIncludesWorkload(Measurements& measurements, const Scale& scale);
void addLookUpWorkload(Measurements& measurements, const Scale& scale);

}  // namespace bench

#endif
