#include <string>

#include <fmt/format.h>

#include "CNames.hpp"
#include "Comment.hpp"
#include "FileNames.hpp"
#include "ProtocolFiles.hpp"

namespace wayland {
namespace {

// Each enumeration has a guard under the name that other generators use too: a program may include
// headers of several generators.
std::string enumerationText(const Interface& interface, const Enumeration& enumeration) {
  const std::string tag = enumerationTag(interface, enumeration);
  std::string entries;
  for (const EnumerationEntry& entry : enumeration.entries) {
    entries +=
        blockComment(wholeText(entry.description), "\t") +
        fmt::format("\t{} = {},\n", enumeratorName(interface, enumeration, entry), entry.value);
  }
  const std::string note = enumeration.bitfield ? "\n\nValues may be combined." : "";
  return fmt::format("\n#ifndef {0}_ENUM\n#define {0}_ENUM\n{1}enum {2} {{\n{3}}};\n#endif\n",
                     capitals(tag), blockComment(wholeText(enumeration.description) + note), tag,
                     entries);
}

class EnumerationsHeader : public ProtocolFile {
 public:
  EnumerationsHeader(Varn::VarnFileRepository& repository, const Protocol& protocol)
      : ProtocolFile(repository, repository.createDataTypesFile(enumerationsHeaderName(protocol))) {
  }

  void begin(const Protocol& protocol, const ProtocolText& text) override {
    setAttributes(protocol, "SystemHeader");
    file().addCustomSection("Defines", "SinceVersions");
    // It must precede the end of the include guard, so it is placed here rather than appended.
    file().addCustomSection("Types", "Enumerations");
    file().add("Defines", text.introduction);
    openGuard();
    file().add("Defines", "\n");
  }

  void addInterface(const Interface& interface, const SharedText& /*documentation*/) override {
    for (const Message& request : interface.requests) {
      addSince(sinceMacro(interface, request), request.since);
    }
    for (const Message& event : interface.events) {
      addSince(sinceMacro(interface, event), event.since);
    }
    for (const Enumeration& enumeration : interface.enumerations) {
      file().fillCustomSection("Enumerations", enumerationText(interface, enumeration));
      for (const EnumerationEntry& entry : enumeration.entries) {
        addSince(enumeratorName(interface, enumeration, entry) + "_SINCE_VERSION", entry.since);
      }
    }
  }

  void finish(const Protocol& /*protocol*/) override {
    file().placeCustomSection("Enumerations", "Typedefs");
    closeGuard("Typedefs");
  }

 private:
  void addSince(const std::string& macro, int since) {
    file().fillCustomSection("SinceVersions", fmt::format("#define {} {}\n", macro, since));
  }
};

}  // namespace

std::unique_ptr<ProtocolFile> makeEnumerationsHeader(Varn::VarnFileRepository& repository,
                                                     const Protocol& protocol) {
  return std::make_unique<EnumerationsHeader>(repository, protocol);
}

}  // namespace wayland
