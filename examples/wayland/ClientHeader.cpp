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

std::string listener(const Interface& interface) {
  std::string members;
  for (const Message& event : interface.events) {
    std::vector<std::string> parameters = {
        "void *" + freeParameterName(event, "data"),
        fmt::format("struct {} *{}", interface.name, freeParameterName(event, "proxy"))};
    for (std::string& parameter : cParameters(event, Side::ClientEvent)) {
      parameters.push_back(std::move(parameter));
    }
    members += blockComment(describe(event), "\t") +
               fmt::format("\tvoid (*{})({});\n", event.name, fmt::join(parameters, ",\n\t\t"));
  }
  return fmt::format("\nstruct {}_listener {{\n{}}};\n", interface.name, members);
}

// Functions that every object of a client has.
std::string commonFunctions(const Interface& interface) {
  constexpr const char* text = R"(
static inline void
{0}_set_user_data(struct {0} *proxy, void *user_data)
{{
	wl_proxy_set_user_data((struct wl_proxy *) proxy, user_data);
}}

static inline void *
{0}_get_user_data(struct {0} *proxy)
{{
	return wl_proxy_get_user_data((struct wl_proxy *) proxy);
}}

static inline uint32_t
{0}_get_version(struct {0} *proxy)
{{
	return wl_proxy_get_version((struct wl_proxy *) proxy);
}}
)";
  return fmt::format(text, interface.name);
}

std::string addListenerFunction(const Interface& interface) {
  constexpr const char* text = R"(
static inline int
{0}_add_listener(struct {0} *proxy,
		const struct {0}_listener *listener, void *data)
{{
	return wl_proxy_add_listener((struct wl_proxy *) proxy,
		(void (**)(void)) listener, data);
}}
)";
  return fmt::format(text, interface.name);
}

std::string destroyFunction(const Interface& interface) {
  constexpr const char* text = R"(
/*
 * Forgets the object without telling the server.
 */
static inline void
{0}_destroy(struct {0} *proxy)
{{
	wl_proxy_destroy((struct wl_proxy *) proxy);
}}
)";
  return fmt::format(text, interface.name);
}

// The arguments of wl_proxy_marshal_flags() after the proxy and the opcode.
std::vector<std::string> marshalArguments(const Message& request, const std::string& self) {
  const Argument* made = newObject(request);
  const bool anyInterface = made != nullptr && made->interface.empty();
  const std::string interface = freeParameterName(request, "interface");
  const std::string version = freeParameterName(request, "version");
  std::string madeInterface = "NULL";
  if (made != nullptr) {
    madeInterface = anyInterface ? interface : "&" + interfaceSymbol(made->interface);
  }
  std::vector<std::string> arguments = {
      madeInterface,
      anyInterface ? version : fmt::format("wl_proxy_get_version((struct wl_proxy *) {})", self),
      request.destructor ? "WL_MARSHAL_FLAG_DESTROY" : "0"};
  for (const Argument& argument : request.arguments) {
    if (argument.type != ArgumentType::NewId) {
      arguments.push_back(argument.name);
      continue;
    }
    if (anyInterface) {
      arguments.push_back(interface + "->name");
      arguments.push_back(version);
    }
    arguments.emplace_back("NULL");
  }
  return arguments;
}

std::string requestFunctionText(const Interface& interface, const Message& request) {
  const std::string self = freeParameterName(request, "proxy");
  std::vector<std::string> parameters = cParameters(request, Side::ClientRequest);
  parameters.insert(parameters.begin(), fmt::format("struct {} *{}", interface.name, self));
  const Argument* made = newObject(request);
  std::string returned = "void";
  std::string conversion;
  if (made != nullptr) {
    returned = made->interface.empty() ? "void *" : fmt::format("struct {} *", made->interface);
    conversion = fmt::format("return ({}) ", returned);
  }
  return fmt::format(
      "\n{}static inline {}\n{}({})\n{{\n"
      "\t{}wl_proxy_marshal_flags((struct wl_proxy *) {}, {},\n\t\t{});\n}}\n",
      blockComment(describe(request)), returned, requestFunction(interface, request),
      fmt::join(parameters, ",\n\t\t"), conversion, self, requestOpcode(interface, request),
      fmt::join(marshalArguments(request, self), ", "));
}

class ClientHeader : public ProtocolFile {
 public:
  ClientHeader(Varn::VarnFileRepository& repository, const Protocol& protocol, int module)
      : ProtocolFile(repository,
                     repository.createModuleHeaderFile(clientHeaderName(protocol), {module})) {}

  void begin(const Protocol& protocol, const ProtocolText& text) override {
    setAttributes(protocol, "SystemHeader");
    file().addCustomSection("Documentation", "InterfaceIndex");
    file().addCustomSection("Defines", "RequestOpcodes");
    file().add("Documentation", text.introduction);
    openGuard();
    file().add("Defines", "\n");
    file().add("ExternData", "\n");
    file().setAttribute("RequiredIncludes", "<stddef.h>");
    file().setAttribute("RequiredIncludes", "<stdint.h>");
    file().setAttribute("UtilityIncludes", "<wayland-client-core.h>");
    file().setAttribute("UtilityIncludes", enumerationsHeaderName(protocol));
    file().addForwardDeclaration(openExternC);
    file().add("FcnPrototypes", text.prototypes);
    for (const std::string& interface : foreignInterfaces(protocol)) addObject(interface);
  }

  void addInterface(const Interface& interface, const SharedText& documentation) override {
    file().add("Documentation", documentation);
    file().fillCustomSection("InterfaceIndex", indexLine(interface));
    addObject(interface.name);
    if (!interface.events.empty()) {
      file().add("Typedefs", listener(interface));
      file().add("Functions", addListenerFunction(interface));
    }
    file().add("Functions", commonFunctions(interface));
    if (hasDestroyFunction(interface)) file().add("Functions", destroyFunction(interface));
    for (std::size_t i = 0; i < interface.requests.size(); ++i) {
      const Message& request = interface.requests[i];
      file().fillCustomSection(
          "RequestOpcodes", fmt::format("#define {} {}\n", requestOpcode(interface, request), i));
      file().add("Functions", requestFunctionText(interface, request));
    }
  }

  void finish(const Protocol& /*protocol*/) override {
    file().add("Documentation", indexStart);
    file().placeCustomSection("InterfaceIndex", "Documentation");
    file().add("Documentation", indexEnd);
    file().add("Functions", closeExternC);
    closeGuard("Functions");
  }

 private:
  void addObject(const std::string& interfaceName) {
    file().addForwardDeclaration(fmt::format("struct {};\n", interfaceName));
    file().add("ExternData", fmt::format("extern const struct wl_interface {};\n",
                                         interfaceSymbol(interfaceName)));
  }
};

}  // namespace

std::unique_ptr<ProtocolFile> makeClientHeader(Varn::VarnFileRepository& repository,
                                               const Protocol& protocol, Modules modules) {
  return std::make_unique<ClientHeader>(repository, protocol, modules.client);
}

}  // namespace wayland
