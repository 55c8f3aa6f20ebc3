#include <fmt/format.h>

#include "CNames.hpp"
#include "FileNames.hpp"
#include "ProtocolFiles.hpp"

namespace wayland {
namespace {

class UmbrellaHeader : public ProtocolFile {
 public:
  UmbrellaHeader(Varn::VarnFileRepository& repository, const Protocol& protocol, Modules modules)
      : ProtocolFile(repository, repository.createGenericFile(umbrellaHeaderName(protocol))),
        clientHeader_(repository.getModuleHeaderFileByIndex(modules.client)->getNameAscii()),
        serverHeader_(repository.getModuleHeaderFileByIndex(modules.server)->getNameAscii()) {}

  void begin(const Protocol& protocol, const ProtocolText& text) override {
    setAttributes(protocol, "SystemHeader");
    file().addCustomSection("Banner", "InterfaceIndex");
    file().addCustomSection("Defines", "InterfaceVersions");
    file().add("Banner", text.introduction);
    openGuard();
    file().setAttribute("RequiredIncludes", enumerationsHeaderName(protocol));
    file().setAttribute("RequiredIncludes", clientHeader_);
    file().setAttribute("RequiredIncludes", serverHeader_);
    file().add("Defines",
               "\n/*\n * The newest version of each interface that these headers know.\n */\n");
  }

  void addInterface(const Interface& interface, const SharedText& /*documentation*/) override {
    file().fillCustomSection("InterfaceIndex", indexLine(interface));
    file().fillCustomSection(
        "InterfaceVersions",
        fmt::format("#define {} {}\n", versionMacro(interface), interface.version));
  }

  void finish(const Protocol& /*protocol*/) override {
    file().add("Banner", indexStart);
    file().placeCustomSection("InterfaceIndex", "Banner");
    file().add("Banner", indexEnd);
    closeGuard("UserBottom");
  }

 private:
  std::string clientHeader_;
  std::string serverHeader_;
};

}  // namespace

std::unique_ptr<ProtocolFile> makeUmbrellaHeader(Varn::VarnFileRepository& repository,
                                                 const Protocol& protocol, Modules modules) {
  return std::make_unique<UmbrellaHeader>(repository, protocol, modules);
}

}  // namespace wayland
