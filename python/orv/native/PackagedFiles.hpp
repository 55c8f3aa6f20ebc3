#ifndef ORV_PACKAGEDFILES_HPP
#define ORV_PACKAGEDFILES_HPP

#include <varn/FileRepOrvBridge.hpp>
#include <varn/VarnFilePackagingManager.hpp>
#include <varn/VarnFileRepository.hpp>

namespace orv {

// The repository of one run with its packaging manager, which goes first. Everything in Python that
// refers to a file holds this object alive.
struct PackagedFiles {
  Varn::FileRepOrvBridge& bridge() { return repository.orvBridge(); }
  Varn::VarnFile& file(int index) { return bridge().getFileFromIndex(index); }

  Varn::VarnFileRepository repository;
  Varn::VarnFilePackagingManager manager{&repository};
};

}  // namespace orv

#endif
