#ifndef ORV_OUTPUT_REGION_BINDING_HPP
#define ORV_OUTPUT_REGION_BINDING_HPP

#include <vector>

#include <pybind11/pybind11.h>

#include "python/orv/native/output/Regions.hpp"

// The regions of a text are one object in Python: a run may have very many of them.
PYBIND11_MAKE_OPAQUE(std::vector<orv::Region>)

namespace orv {

using Regions = std::vector<Region>;

}  // namespace orv

#endif
