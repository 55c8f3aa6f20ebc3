#include <varn/VarnFilePackagingManager.hpp>

namespace Varn {

VarnFilePackagingManager::VarnFilePackagingManager(VarnFileRepository* repository)
    : bridge_(std::make_unique<VarnFilePackagingOrvBridge>(this, repository)),
      repository_(repository) {}

VarnFilePackagingManager::~VarnFilePackagingManager() = default;

}  // namespace Varn
