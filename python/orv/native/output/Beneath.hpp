#ifndef ORV_OUTPUT_BENEATH_HPP
#define ORV_OUTPUT_BENEATH_HPP

#include <string>
#include <utility>

#include "python/orv/native/output/Descriptor.hpp"

namespace orv {

// A relative path's folder, empty for the folder that it is relative to, and its last component.
std::pair<std::string, std::string> splitPath(const std::string& path);

// The path of `name` in `folder`, which may be empty.
std::string joinPath(const std::string& folder, const std::string& name);

// Opens the file `path` beneath the open folder, with the flags of open(2) and close-on-exec. The
// empty path is the folder itself. Returns no descriptor when there is no such file. Throws
// SystemError: ELOOP when any component is a link, EXDEV when the path climbs or is absolute.
//
// The kernel resolves the path in one step. Where it cannot, or is not allowed to, the path is
// resolved component by component.
Descriptor findBeneath(int folder, const std::string& path, int flags);

}  // namespace orv

#endif
