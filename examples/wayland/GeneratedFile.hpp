#ifndef WAYLAND_GENERATEDFILE_HPP
#define WAYLAND_GENERATEDFILE_HPP

#include <cstdio>
#include <string>

#include <boost/shared_ptr.hpp>

#include <varn/varn_filepackaging.hpp>

namespace wayland {

// Text that several files share.
using SharedText = boost::shared_ptr<Varn::FileSectionFragment>;
SharedText shareText(std::string text);

// How much of a file was written.
struct WrittenSize {
  int sections = 0;  // that had any text
  long bytes = 0;
};

// One file of a repository, addressed as a template engine does it: by index and names. It must
// not outlive the repository.
class GeneratedFile {
 public:
  GeneratedFile(Varn::VarnFileRepository& repository, int index);

  std::string name() const;

  void setAttribute(const std::string& attribute, const std::string& value);
  void setWrittenToDisk();

  void add(const std::string& section, const std::string& text);
  void add(const std::string& section, const SharedText& text);
  // Adds to the forward declarations, the one section that has no name.
  void addForwardDeclaration(const std::string& text);

  // Declares a custom section of `builtin`. If it is not placed, it is appended when `builtin` is
  // written.
  void addCustomSection(const std::string& builtin, const std::string& custom);
  void fillCustomSection(const std::string& custom, const std::string& text);
  // Adds the text of `custom` to `section`, once.
  void placeCustomSection(const std::string& custom, const std::string& section);

  // Writes every section, in the same order for all files. The size is taken from the stream's
  // position, and is 0 for a pipe, which has none. Throws std::system_error, naming `path`, as soon
  // as the stream fails. The caller owns the stream, and checks it when it is closed.
  WrittenSize write(FILE* stream, const std::string& path) const;

 private:
  Varn::VarnFile& file() const;

  Varn::FileRepOrvBridge* bridge_;
  int index_;
};

}  // namespace wayland

#endif
