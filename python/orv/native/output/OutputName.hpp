#ifndef ORV_OUTPUT_OUTPUTNAME_HPP
#define ORV_OUTPUT_OUTPUTNAME_HPP

#include <string>

namespace orv {

// The path of a file below the output folder: `directory` and `name` joined, without empty and "."
// components. Throws OutputRefused, naming the path and what is wrong with it, for a path that is
// absolute or climbs, that some system could not hold, that shows as something else than it is
// (control characters, line separators, bidirectional overrides), or that belongs to others: a
// component ".git", and the names of the engine's own files, ".orv-*.tmp" and ".orv-state.json".
std::string outputPath(const std::string& directory, const std::string& name);

// Whether a name is that of a temporary file of the engine.
bool isTemporaryName(const std::string& name);

}  // namespace orv

#endif
