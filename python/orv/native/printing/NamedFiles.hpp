#ifndef ORV_PRINTING_NAMEDFILES_HPP
#define ORV_PRINTING_NAMEDFILES_HPP

#include <array>
#include <cstddef>
#include <string>

#include <pybind11/pybind11.h>

#include "python/orv/native/PackagedFiles.hpp"
#include "python/orv/native/Text.hpp"

namespace orv {

// Finds files by their names. The names in templates are mostly constants, the same objects each
// time: the last ones are known by their identity until another file is made.
class NamedFiles {
 public:
  // The file that is called `name`, a text; -1 for none.
  int find(const PackagedFiles& files, pybind11::handle name) {
    const std::size_t count = files.repository.getFileList().size();
    if (count != count_) clear();
    for (const Named& known : known_) {
      if (known.name.is(name)) return known.file;
    }
    const int file = files.repository.findFileIndexByName(textArgument(name, "a file's name"));
    if (file < 0) return file;
    count_ = count;
    known_[next_++ % known_.size()] = {pybind11::reinterpret_borrow<pybind11::object>(name), file};
    return file;
  }
  void clear() { known_ = {}; }

 private:
  struct Named {
    pybind11::object name;
    int file = -1;
  };

  std::array<Named, 4> known_;
  std::size_t next_ = 0;
  // The number of files when they were found.
  std::size_t count_ = 0;
};

}  // namespace orv

#endif
