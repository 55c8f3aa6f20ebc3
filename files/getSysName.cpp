#include "varn/getSysName.hpp"

namespace Varn {

std::vector<std::string> getSysName(const std::string& s) {
  std::vector<std::string> names(2);
  const auto open = s.find('<');
  const auto close = s.find('>');
  const auto slash = s.find('/');
  if (close == std::string::npos) return names;
  if (open != std::string::npos && close > open + 1) {
    names[0] = s.substr(open + 1, close - open - 1);
  }
  if (slash != std::string::npos) names[1] = s.substr(slash + 1);
  return names;
}

}  // namespace Varn
