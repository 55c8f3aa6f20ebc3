#ifndef ORV_TRACING_CARRY_HPP
#define ORV_TRACING_CARRY_HPP

#include <string_view>
#include <vector>

#include "python/orv/native/output/Regions.hpp"
#include "python/orv/native/tracing/Trace.hpp"

namespace orv {

// What `traced` says of `before` said of `after`, which a formatter made of it. A character that is
// not white space has the origin of the one that it was; white space has that of what it follows,
// at the beginning of a line of what follows it. What cannot be found in `before` is the
// formatter's.
TracedText carriedOver(Trace& trace, const TracedText& traced, std::string_view before,
                       std::string_view after);

// What `traced` says of `before` said of `after`, which has other texts in some of its regions and
// may have other line ends. The regions become parts of the text.
TracedText withRegions(const TracedText& traced, std::string_view before, std::string_view after,
                       const std::vector<Region>& regions, const RegionTexts& texts);

}  // namespace orv

#endif
