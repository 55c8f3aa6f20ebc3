#include "files/RegisteredNames.hpp"

#include <cctype>
#include <cstdint>
#include <locale>

#include <boost/algorithm/string/predicate.hpp>

namespace Varn {

std::size_t CaseInsensitiveHash::operator()(const std::string& name) const {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char character : name) {
    hash ^= static_cast<std::uint64_t>(std::tolower(static_cast<unsigned char>(character)));
    hash *= 0x100000001B3U;
  }
  return hash;
}

bool CaseInsensitiveEqual::operator()(const std::string& a, const std::string& b) const {
  return boost::algorithm::iequals(a, b, std::locale());
}

}  // namespace Varn
