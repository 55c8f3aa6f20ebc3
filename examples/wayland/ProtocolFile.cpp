#include "ProtocolFile.hpp"

#include <fmt/format.h>

#include "CNames.hpp"
#include "Comment.hpp"
#include "FileNames.hpp"

namespace wayland {
const char* const openExternC = "\n#ifdef __cplusplus\nextern \"C\" {\n#endif\n\n";
const char* const closeExternC = "\n#ifdef __cplusplus\n}\n#endif\n";

const char* const indexStart = "\n/*\n * Interfaces and their versions:\n";
const char* const indexEnd = " */\n";

std::string indexLine(const Interface& interface) {
  return fmt::format(" *   {} {}\n", interface.name, interface.version);
}

ProtocolText commonText(const Protocol& protocol) {
  const std::string introduction = fmt::format(
      "The Wayland protocol {}.\nWritten by varn_wayland from its description: change that "
      "instead.\n\n{}\n\n{}",
      protocol.name, wholeText(protocol.description), protocol.copyright);
  const std::string prototypes = fmt::format(
      "\n/*\n * The interface of this protocol that is called `name`, or NULL.\n */\n"
      "const struct wl_interface *{}(const char *name);\n",
      findFunction(protocol));
  return {shareText(blockComment(introduction)), shareText(prototypes)};
}

SharedText interfaceDocumentation(const Interface& interface) {
  return shareText("\n" +
                   blockComment(fmt::format("{}, version {}\n\n{}", interface.name,
                                            interface.version, wholeText(interface.description))));
}

ProtocolFile::ProtocolFile(Varn::VarnFileRepository& repository, const Varn::VarnFile& file)
    : file_(repository, repository.findFileIndexByName(file.getNameAscii())) {}

void ProtocolFile::setAttributes(const Protocol& protocol, const char* type) {
  file_.setAttribute("Type", type);
  file_.setAttribute("Creator", "varn_wayland");
  file_.setAttribute("Group", protocol.name);
}

void ProtocolFile::openGuard() {
  const std::string guard = includeGuard(file_.name());
  file_.setAttribute("DefinedMacro", guard);
  file_.add("Defines", fmt::format("\n#ifndef {0}\n#define {0}\n", guard));
}

void ProtocolFile::closeGuard(const char* section) { file_.add(section, "\n#endif\n"); }

}  // namespace wayland
