#include <string>
#include <vector>

#include <fmt/format.h>

#include "ArgumentTypes.hpp"
#include "CNames.hpp"
#include "Comment.hpp"
#include "FileNames.hpp"
#include "ProtocolFiles.hpp"

namespace wayland {
namespace {

std::string implementation(const Interface& interface) {
  std::string members;
  for (const Message& request : interface.requests) {
    std::vector<std::string> parameters = {
        "struct wl_client *" + freeParameterName(request, "client"),
        "struct wl_resource *" + freeParameterName(request, "resource")};
    for (std::string& parameter : cParameters(request, Side::ServerRequest)) {
      parameters.push_back(std::move(parameter));
    }
    members += blockComment(describe(request), "\t") +
               fmt::format("\tvoid (*{})({});\n", request.name, fmt::join(parameters, ",\n\t\t"));
  }
  return fmt::format("\nstruct {}_interface {{\n{}}};\n", interface.name, members);
}

std::string eventFunctionText(const Interface& interface, const Message& event) {
  const std::string self = freeParameterName(event, "resource");
  std::vector<std::string> parameters = cParameters(event, Side::ServerEvent);
  parameters.insert(parameters.begin(), "struct wl_resource *" + self);
  std::vector<std::string> arguments = {self, eventOpcode(interface, event)};
  for (const Argument& argument : event.arguments) arguments.push_back(argument.name);
  return fmt::format("\n{}static inline void\n{}({})\n{{\n\twl_resource_post_event({});\n}}\n",
                     blockComment(describe(event)), eventFunction(interface, event),
                     fmt::join(parameters, ",\n\t\t"), fmt::join(arguments, ", "));
}

class ServerHeader : public ProtocolFile {
 public:
  ServerHeader(Varn::VarnFileRepository& repository, const Protocol& protocol, int module)
      : ProtocolFile(repository,
                     repository.createModuleHeaderFile(serverHeaderName(protocol), {module})) {}

  void begin(const Protocol& protocol, const ProtocolText& text) override {
    setAttributes(protocol, "SystemHeader");
    file().addCustomSection("Documentation", "InterfaceIndex");
    file().addCustomSection("Defines", "EventOpcodes");
    file().add("Documentation", text.introduction);
    openGuard();
    file().add("Defines", "\n");
    file().add("ExternData", "\n");
    file().setAttribute("RequiredIncludes", "<stdint.h>");
    file().setAttribute("UtilityIncludes", "<wayland-server-core.h>");
    file().setAttribute("UtilityIncludes", enumerationsHeaderName(protocol));
    file().addForwardDeclaration(openExternC);
    file().addForwardDeclaration("struct wl_client;\nstruct wl_resource;\n");
    file().add("FcnPrototypes", text.prototypes);
  }

  void addInterface(const Interface& interface, const SharedText& documentation) override {
    file().add("Documentation", documentation);
    file().fillCustomSection("InterfaceIndex", indexLine(interface));
    file().add("ExternData", fmt::format("extern const struct wl_interface {};\n",
                                         interfaceSymbol(interface.name)));
    if (!interface.requests.empty()) file().add("Typedefs", implementation(interface));
    for (std::size_t i = 0; i < interface.events.size(); ++i) {
      const Message& event = interface.events[i];
      file().fillCustomSection("EventOpcodes",
                               fmt::format("#define {} {}\n", eventOpcode(interface, event), i));
      file().add("Functions", eventFunctionText(interface, event));
    }
  }

  void finish(const Protocol& /*protocol*/) override {
    file().add("Documentation", indexStart);
    file().placeCustomSection("InterfaceIndex", "Documentation");
    file().add("Documentation", indexEnd);
    file().add("Functions", closeExternC);
    closeGuard("Functions");
  }
};

}  // namespace

std::unique_ptr<ProtocolFile> makeServerHeader(Varn::VarnFileRepository& repository,
                                               const Protocol& protocol, Modules modules) {
  return std::make_unique<ServerHeader>(repository, protocol, modules.server);
}

}  // namespace wayland
