#ifndef ORV_OUTPUT_LINEDIRECTIVES_HPP
#define ORV_OUTPUT_LINEDIRECTIVES_HPP

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "python/orv/native/output/Composer.hpp"
#include "python/orv/native/output/Regions.hpp"

namespace orv {

// Gives the name of a template in directives, by the name that the trace has for it.
using DirectiveNames = std::function<std::string(const std::string& file)>;

// The C file with `#line` directives that name where its lines come from: lines of templates, or
// for scripts and user regions those of the file itself, which is called `own`. Directives are put
// where C allows them: not within parentheses, comments or lines that are continued, nor in user
// regions. The lines of what the engine writes are not named.
ComposedFile withLineDirectives(const ComposedFile& file, const Trace& trace,
                                const DirectiveNames& names, const std::string& own);

// The text with the right numbers in the directives that name the file itself, after others have
// written into its regions.
std::string renumbered(std::string_view text, const std::vector<Region>& regions,
                       const std::string& own);

}  // namespace orv

#endif
