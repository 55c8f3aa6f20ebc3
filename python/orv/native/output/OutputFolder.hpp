#ifndef ORV_OUTPUT_OUTPUTFOLDER_HPP
#define ORV_OUTPUT_OUTPUTFOLDER_HPP

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <sys/types.h>

#include "python/orv/native/output/Descriptor.hpp"
#include "python/orv/native/output/Regions.hpp"

namespace orv {

// A folder that files are written to, and everything below it.
//
// The folder is opened once, so that what happens to the path that leads to it changes nothing. It
// need not exist: create() makes it. Paths below it are relative, with "/". locate() follows the
// links on the way to a file and gives its location; all other operations take locations, where a
// link is an error: one that was put there since. Besides the folder itself at most three
// descriptors are open at a time.
//
// The system's failures throw SystemError, places that are none throw OutputRefused.
class OutputFolder {
 public:
  // A region of a file on the disk. It is taken when a new text has one of its name.
  struct KeptRegion {
    std::string id;
    std::size_t line;
    std::string text;
    bool isTaken;
  };

  // How a file compares with a text. The hash is that of the file without its regions (see
  // Regions.hpp). `merged` is the new text with the file's regions taken over, if that is another.
  // `regions` are those of a file that is not the same as that.
  struct Comparison {
    bool exists = false;
    bool same = false;
    std::string hash;
    std::vector<KeptRegion> regions;
    bool endsLinesWithReturn = false;
    std::optional<std::string> merged;
  };

  // `path` is the folder as its user names it, `real` the same with all links resolved. When
  // `durable`, what is written is on the disk after sync().
  OutputFolder(std::string path, std::string real, bool durable);

  const std::string& path() const { return path_; }
  const std::string& real() const { return real_; }
  bool exists() const { return missing_.empty(); }

  // Makes the folder and what is missing above it. Returns false when it was there already.
  bool create();

  // Locks the folder itself, for readers or for one writer, until this object is destroyed. Returns
  // false when others hold it.
  bool lock(bool shared);

  // The location of the file `path`, which need not exist. Refuses ways that lead out of the folder
  // or meet something that is not a folder, and what is there and not a plain file.
  std::string locate(const std::string& path);

  // Reads the file once. `regions` are those of `data`. `markers` are those of the file's regions;
  // null when it has none. Throws RegionDamage.
  Comparison compare(const std::string& location, std::string_view data,
                     const std::vector<Region>& regions, const Markers* markers) const;
  std::optional<std::string> read(const std::string& location) const;
  bool hasFolder(const std::string& location) const;

  // Gives the file new bytes in one step, in a folder that is made when it is missing. The file
  // keeps the permission bits that it has, never setuid, setgid and the sticky bit; `mode` sets
  // others. A failure leaves it as it was. Refuses, like remove(), a file that is not as it was
  // when it was compared last: someone writes to it, too.
  void replace(const std::string& location, std::string_view data, std::optional<mode_t> mode);
  void setMode(const std::string& location, mode_t mode) const;
  void remove(const std::string& location);
  // Returns false when the folder is not there or not empty.
  bool removeFolder(const std::string& location);
  // Removes what writers that were killed left in the folder at `location`, if there is one.
  void removeAbandoned(const std::string& location) const;

  // Waits until everything written is on the disk. Does nothing unless the folder is durable.
  void sync();

 private:
  enum class Wanted { folder, file };
  // Inode, size, and the times of the last change of the bytes and of the inode. One of them
  // differs when others write to the file, replace it or set its time back, unless that happens
  // within one tick of the file system's clock and keeps the size.
  using Version = std::array<std::int64_t, 6>;

  static Version versionOf(const struct stat& status);
  void open();
  std::string locateFolder(const std::string& path);
  std::string follow(const std::string& start, const std::string& path, Wanted wanted) const;
  std::string target(const std::string& link) const;
  void requireKind(const std::string& location, mode_t mode, Wanted wanted) const;
  std::string shown(const std::string& location) const;
  Descriptor find(const std::string& location, int flags) const;
  void requireUnchanged(const std::string& location, const struct stat* now) const;
  Descriptor openFolder(const std::string& location) const;
  Descriptor makeFolder(const std::string& location);
  void changed(const std::string& folder);

  std::string path_;
  std::string real_;
  bool durable_;
  // The deepest folder on the way that is there, and what is missing below it.
  Descriptor folder_;
  std::vector<std::string> missing_;
  std::map<std::string, std::string> located_;
  std::set<std::string> changed_;
  // The versions of the files that were compared; nothing for those that were not there.
  mutable std::map<std::string, std::optional<Version>> compared_;
};

}  // namespace orv

#endif
