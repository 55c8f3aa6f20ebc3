#ifndef VARN_VARNFILEPACKAGINGMANAGER_HPP
#define VARN_VARNFILEPACKAGINGMANAGER_HPP

#include <memory>

#include <varn/Export.hpp>
#include <varn/VarnFilePackagingOrvBridge.hpp>
#include <varn/VarnFileRepository.hpp>

namespace Varn {

// Ties a repository to the bridge through which the template engine finds files by packaging
// key. It owns the bridge, not the repository, which must outlive it.
class VARN_EXPORT VarnFilePackagingManager {
 public:
  // `repository` must not be null.
  explicit VarnFilePackagingManager(VarnFileRepository* repository);
  // The bridge refers to this object: it is neither copied nor moved.
  VarnFilePackagingManager(const VarnFilePackagingManager&) = delete;
  VarnFilePackagingManager& operator=(const VarnFilePackagingManager&) = delete;
  ~VarnFilePackagingManager();

  VarnFileRepository* getFileRepository() const;

  VarnFilePackagingOrvBridge& orvBridge();

 private:
  std::unique_ptr<VarnFilePackagingOrvBridge> bridge_;
  VarnFileRepository* repository_;
};

}  // namespace Varn

#endif
