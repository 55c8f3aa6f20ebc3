#ifndef ORBEL_SRC_DEFAULTMESSAGES_HPP
#define ORBEL_SRC_DEFAULTMESSAGES_HPP

#include <vector>

namespace orbel {

struct DefaultMessage {
  const char* identifier;
  const char* words;
};

// The object system's own messages, of the component "Orbel".
const std::vector<DefaultMessage>& defaultMessages();

}  // namespace orbel

#endif
