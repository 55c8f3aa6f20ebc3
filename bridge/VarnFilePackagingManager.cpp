#include "varn/VarnFilePackagingManager.hpp"

namespace Varn {

VarnFilePackagingManager::VarnFilePackagingManager(VarnFileRepository* repository)
    : bridge_(std::make_unique<VarnFilePackagingOrvBridge>(this, repository)),
      repository_(repository) {}

VarnFilePackagingManager::~VarnFilePackagingManager() = default;

VarnFileRepository* VarnFilePackagingManager::getFileRepository() const { return repository_; }
VarnFilePackagingOrvBridge& VarnFilePackagingManager::orvBridge() { return *bridge_; }

}  // namespace Varn
