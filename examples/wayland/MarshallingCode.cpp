#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "ArgumentTypes.hpp"
#include "CNames.hpp"
#include "FileNames.hpp"
#include "ProtocolFiles.hpp"

namespace wayland {
namespace {

bool refersToInterfaces(const Message& message) {
  return std::any_of(message.arguments.begin(), message.arguments.end(),
                     [](const Argument& argument) { return !argument.interface.empty(); });
}

// The most signature letters of a message without interfaces: the length of the array of nulls
// that these messages share. At least 1 when there is such a message, 0 when there is none.
std::size_t longestWithoutInterfaces(const Protocol& protocol) {
  std::size_t longest = 0;
  const auto measure = [&](const std::vector<Message>& messages) {
    for (const Message& message : messages) {
      if (!refersToInterfaces(message)) {
        longest = std::max({longest, signatureInterfaces(message).size(), std::size_t{1}});
      }
    }
  };
  for (const Interface& interface : protocol.interfaces) {
    measure(interface.requests);
    measure(interface.events);
  }
  return longest;
}

class MarshallingCode : public ProtocolFile {
 public:
  MarshallingCode(Varn::VarnFileRepository& repository, const Protocol& protocol, Modules modules)
      : ProtocolFile(repository,
                     repository.createModuleSourceFile(marshallingCodeName(protocol),
                                                       {modules.client, modules.server})),
        hiddenMacro_(capitals(protocol.name) + "_HIDDEN") {}

  void begin(const Protocol& protocol, const ProtocolText& text) override {
    setAttributes(protocol, "SystemBody");
    // The messages refer to the type arrays, so all of them follow all of those.
    file().addCustomSection("Declarations", "InterfaceTables");
    file().addCustomSection("Functions", "InterfaceList");
    file().add("Documentation", text.introduction);
    file().add("Defines",
               fmt::format("\n#ifdef __GNUC__\n#define {0} __attribute__((visibility(\"hidden\")))"
                           "\n#else\n#define {0}\n#endif\n",
                           hiddenMacro_));
    file().setAttribute("RequiredIncludes", "<stddef.h>");
    file().setAttribute("RequiredIncludes", "<string.h>");
    file().setAttribute("UtilityIncludes", "<wayland-util.h>");
    file().add("ExternData", "\n");
    file().add("FcnPrototypes", text.prototypes);
    for (const std::string& interface : foreignInterfaces(protocol)) {
      file().add("ExternData",
                 fmt::format("extern const struct wl_interface {};\n", interfaceSymbol(interface)));
    }
    const std::size_t nulls = longestWithoutInterfaces(protocol);
    if (nulls != 0) {
      file().add("Declarations",
                 fmt::format("\nstatic const struct wl_interface *no_interfaces[{}];\n", nulls));
    }
  }

  void addInterface(const Interface& interface, const SharedText& /*documentation*/) override {
    const std::string symbol = interfaceSymbol(interface.name);
    file().add("ExternData",
               fmt::format("extern {} const struct wl_interface {};\n", hiddenMacro_, symbol));
    const std::string requests = addMessages(interface.name + "_requests", interface.requests);
    const std::string events = addMessages(interface.name + "_events", interface.events);
    file().fillCustomSection(
        "InterfaceTables",
        fmt::format(
            "\nconst struct wl_interface {} = {{\n\t\"{}\", {},\n\t{}, {},\n\t{}, {}\n}};\n",
            symbol, interface.name, interface.version, interface.requests.size(), requests,
            interface.events.size(), events));
    file().fillCustomSection("InterfaceList", fmt::format("\t\t&{},\n", symbol));
  }

  void finish(const Protocol& protocol) override {
    file().add("Functions",
               fmt::format("\n{} const struct wl_interface *\n{}(const char *name)\n"
                           "{{\n\tstatic const struct wl_interface *const all[] = {{\n",
                           hiddenMacro_, findFunction(protocol)));
    file().placeCustomSection("InterfaceList", "Functions");
    file().add("Functions",
               "\t};\n\n\tfor (size_t i = 0; i < sizeof all / sizeof all[0]; i++) {\n"
               "\t\tif (strcmp(all[i]->name, name) == 0)\n\t\t\treturn all[i];\n"
               "\t}\n\treturn NULL;\n}\n");
  }

 private:
  // The interface's reference to its messages: the array, or NULL when there are none.
  std::string addMessages(const std::string& array, const std::vector<Message>& messages) {
    if (messages.empty()) return "NULL";
    std::string rows;
    for (const Message& message : messages) {
      rows += fmt::format("\t{{ \"{}\", \"{}\", {} }},\n", message.name, signatureOf(message),
                          addTypes(message));
    }
    file().fillCustomSection(
        "InterfaceTables",
        fmt::format("\nstatic const struct wl_message {}[] = {{\n{}}};\n", array, rows));
    return array;
  }

  std::string addTypes(const Message& message) {
    if (!refersToInterfaces(message)) return "no_interfaces";
    std::string array = fmt::format("types_{}", typeArrays_++);
    std::string rows;
    for (const std::string& interface : signatureInterfaces(message)) {
      rows += interface.empty() ? "\tNULL,\n" : fmt::format("\t&{},\n", interfaceSymbol(interface));
    }
    file().add("Declarations",
               fmt::format("\nstatic const struct wl_interface *{}[] = {{\n{}}};\n", array, rows));
    return array;
  }

  std::string hiddenMacro_;
  int typeArrays_ = 0;
};

}  // namespace

std::unique_ptr<ProtocolFile> makeMarshallingCode(Varn::VarnFileRepository& repository,
                                                  const Protocol& protocol, Modules modules) {
  return std::make_unique<MarshallingCode>(repository, protocol, modules);
}

}  // namespace wayland
