// The five kinds of files that each protocol gets. Each function makes its file in `repository`;
// the umbrella header is made last, for it includes the other headers by their modules.
#ifndef WAYLAND_PROTOCOLFILES_HPP
#define WAYLAND_PROTOCOLFILES_HPP

#include <memory>

#include <varn/varn_filepackaging.hpp>

#include "ProtocolFile.hpp"

namespace wayland {

// The functions that a client calls, and its callbacks.
std::unique_ptr<ProtocolFile> makeClientHeader(Varn::VarnFileRepository& repository,
                                               const Protocol& protocol, Modules modules);

// The functions that a server calls, and its callbacks.
std::unique_ptr<ProtocolFile> makeServerHeader(Varn::VarnFileRepository& repository,
                                               const Protocol& protocol, Modules modules);

// The tables from which libwayland packs and unpacks messages, for either side.
std::unique_ptr<ProtocolFile> makeMarshallingCode(Varn::VarnFileRepository& repository,
                                                  const Protocol& protocol, Modules modules);

// The enumerations, and the versions that brought each thing.
std::unique_ptr<ProtocolFile> makeEnumerationsHeader(Varn::VarnFileRepository& repository,
                                                     const Protocol& protocol);

// Includes all headers of the protocol.
std::unique_ptr<ProtocolFile> makeUmbrellaHeader(Varn::VarnFileRepository& repository,
                                                 const Protocol& protocol, Modules modules);

}  // namespace wayland

#endif
