#ifndef ORV_OUTPUT_TEMPORARY_HPP
#define ORV_OUTPUT_TEMPORARY_HPP

#include <string>
#include <string_view>

#include <sys/types.h>

#include "python/orv/native/output/Descriptor.hpp"

namespace orv {

// A new file that takes the place of another in one step. Removed when it is destroyed before.
//
// The file is locked (flock) as long as this object lives, so that a lock that can be had marks
// what a writer that was killed has left behind. All failures throw SystemError.
class Temporary {
 public:
  // Creates the file in the open folder, which must outlive this object.
  Temporary(int folder, mode_t mode);
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary();

  void write(std::string_view data);
  void setMode(mode_t mode);
  // Waits until the bytes are on the disk.
  void sync();
  // Puts the file in the place of `name`, in the same folder.
  void replace(const std::string& name);

 private:
  int folder_;
  std::string name_;
  Descriptor file_;
};

// Removes the temporary files in the open folder whose writers are gone. Best effort: what cannot
// be removed stays.
void removeAbandoned(int folder);

}  // namespace orv

#endif
