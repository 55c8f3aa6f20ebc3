#ifndef ORBEL_SRC_HETEROGENEOUS_HPP
#define ORBEL_SRC_HETEROGENEOUS_HPP

#include <memory>
#include <string>

#include <orbel/PackageInfo.hpp>

namespace orbel {

inline const std::string heterogeneousClassName = "orbel.mixin.Heterogeneous";

// The host's own package.
std::unique_ptr<PackageInfo> makeMixinPackage();

}  // namespace orbel

#endif
