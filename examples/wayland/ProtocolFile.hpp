#ifndef WAYLAND_PROTOCOLFILE_HPP
#define WAYLAND_PROTOCOLFILE_HPP

#include <string>

#include <varn/varn_filepackaging.hpp>

#include "GeneratedFile.hpp"
#include "Protocol.hpp"

namespace wayland {

// Text that the files of one protocol have in common.
struct ProtocolText {
  SharedText introduction;  // a comment
  SharedText prototypes;
};

ProtocolText commonText(const Protocol& protocol);

// The description of `interface` as a comment.
SharedText interfaceDocumentation(const Interface& interface);

// A module is the files that one side needs of one protocol: the client's modules have even
// indices, the server's follow theirs.
struct Modules {
  int client;
  int server;
};

// One generated file of a protocol, filled while the protocol is walked: begin(), addInterface()
// for one interface after the other, finish(), each once.
class ProtocolFile {
 public:
  ProtocolFile(const ProtocolFile&) = delete;
  ProtocolFile& operator=(const ProtocolFile&) = delete;
  virtual ~ProtocolFile() = default;

  virtual void begin(const Protocol& protocol, const ProtocolText& text) = 0;
  virtual void addInterface(const Interface& interface, const SharedText& documentation) = 0;
  virtual void finish(const Protocol& protocol) = 0;

  GeneratedFile& file() { return file_; }

 protected:
  // `file` is one of `repository`, no other of which has its name.
  ProtocolFile(Varn::VarnFileRepository& repository, const Varn::VarnFile& file);

  // The attributes that every file of `protocol` has.
  void setAttributes(const Protocol& protocol, const char* type);
  // Opens a header's include guard, in the defines.
  void openGuard();
  // The section must be the last one of the file that has any text.
  void closeGuard(const char* section);

 private:
  GeneratedFile file_;
};

// The opening and the end of the part of a header that has C linkage.
extern const char* const openExternC;
extern const char* const closeExternC;

// The comment that lists the interfaces: its start and end, and the line of one interface.
extern const char* const indexStart;
extern const char* const indexEnd;
std::string indexLine(const Interface& interface);

}  // namespace wayland

#endif
