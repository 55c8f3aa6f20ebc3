#ifndef ORBEL_SRC_QUALIFIEDNAME_HPP
#define ORBEL_SRC_QUALIFIEDNAME_HPP

#include <string>

namespace orbel {

struct QualifiedName {
  std::string package;
  std::string simple;
};

// Splits at the last point; without one, the package is empty.
inline QualifiedName splitQualifiedName(const std::string& name) {
  const auto point = name.rfind('.');
  return point == std::string::npos ? QualifiedName{{}, name}
                                    : QualifiedName{name.substr(0, point), name.substr(point + 1)};
}

}  // namespace orbel

#endif
