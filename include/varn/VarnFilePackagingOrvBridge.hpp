#ifndef VARN_VARNFILEPACKAGINGORVBRIDGE_HPP
#define VARN_VARNFILEPACKAGINGORVBRIDGE_HPP

#include <cstddef>
#include <string>
#include <utility>

#include <boost/function.hpp>
#include <boost/unordered_map.hpp>

#include <varn/Export.hpp>

namespace Varn {

class VarnFile;
class VarnFilePackagingManager;
class VarnFileRepository;

// Gives the template engine files by packaging key, such as "mdl_hdr". It holds the default
// packaging table, which maps keys to a file name and a section name.
//
// Its manager owns it. A copy refers to the same manager and repository, and must outlive
// neither.
class VARN_EXPORT VarnFilePackagingOrvBridge {
 public:
  // Neither pointer is owned; `repository` must not be null.
  VarnFilePackagingOrvBridge(VarnFilePackagingManager* manager, VarnFileRepository* repository);
  VarnFilePackagingOrvBridge(const VarnFilePackagingOrvBridge&);
  VarnFilePackagingOrvBridge& operator=(const VarnFilePackagingOrvBridge& source);
  ~VarnFilePackagingOrvBridge();

  // Inserts the rows of the default table; a present key keeps its row.
  void constructDefaultFilePackagingTable();

  // Finds or makes the file of `key`, applies the key's attributes to it, and returns the index of
  // the last file of the repository, which is that file if it was just made.
  //
  // The file is a generic file under the name in the section column of the key's row: the empty
  // name for "mdl_hdr", "mdl_src" and unknown keys. Only "mdl_hdr" and "mdl_src" have attributes;
  // any other key throws boost::bad_function_call after the file was found or made.
  std::size_t getFileRecIndexForKey(const std::string& key);

  // Group "model", Creator "Plexar", and Type "SystemHeader", or "SystemBody".
  void setModelHeaderAttributes(VarnFile* file);
  void setModelSourceAttributes(VarnFile* file);

 private:
  // A file name and a section name.
  using FileRecord = std::pair<std::string, std::string>;
  // A member of the bridge that holds it, which a copy calls on itself.
  using AttributeSetter = boost::function<void(VarnFilePackagingOrvBridge*, VarnFile*)>;

  VarnFilePackagingManager* manager_;
  boost::unordered_map<std::string, FileRecord> packagingTable_;
  VarnFileRepository* repository_;
  boost::unordered_map<std::string, AttributeSetter> attributeSetters_;
};

}  // namespace Varn

#endif
