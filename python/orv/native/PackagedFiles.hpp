#ifndef ORV_PACKAGEDFILES_HPP
#define ORV_PACKAGEDFILES_HPP

#include <cstddef>
#include <memory>
#include <vector>

#include <varn/FileRepOrvBridge.hpp>
#include <varn/VarnFilePackagingManager.hpp>
#include <varn/VarnFileRepository.hpp>

namespace orv {

class Trace;

// The repository of one run with its packaging manager, which is destroyed first. Every Python
// object that refers to a file keeps this object alive.
struct PackagedFiles {
  Varn::FileRepOrvBridge& bridge() { return repository.orvBridge(); }
  Varn::VarnFile& file(int index) { return bridge().getFileFromIndex(index); }

  // Whether a file is a text file, which has the section "Text" and no other; the library knows it
  // as a generic file.
  bool isText(int index) const {
    const auto position = static_cast<std::size_t>(index);
    return position < texts.size() && texts[position];
  }
  void makeText(int index) {
    texts.resize(static_cast<std::size_t>(index) + 1);
    texts.back() = true;
  }

  Varn::VarnFileRepository repository;
  Varn::VarnFilePackagingManager manager{&repository};
  // By file; as long as the last text file.
  std::vector<bool> texts;
  // Null unless the run is traced.
  std::shared_ptr<Trace> trace;
};

}  // namespace orv

#endif
