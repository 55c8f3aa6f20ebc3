#ifndef VARN_GETSYSNAME_HPP
#define VARN_GETSYSNAME_HPP

#include <string>
#include <vector>

#include <varn/Export.hpp>

namespace Varn {

// Splits a system path such as "<Root>/Sub" into the name between the first "<" and the first ">"
// and what follows the first "/". Always two strings: for "<Root>/Sub", "Root" and "Sub". Without
// ">" both are empty; a part that is not there is empty. Nothing is trimmed.
VARN_EXPORT std::vector<std::string> getSysName(const std::string& s);

}  // namespace Varn

#endif
