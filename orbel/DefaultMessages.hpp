#ifndef ORBEL_SRC_DEFAULTMESSAGES_HPP
#define ORBEL_SRC_DEFAULTMESSAGES_HPP

#include <vector>

namespace orbel {

struct DefaultMessage {
  const char* component;
  const char* identifier;
  const char* words;
};

// What the catalogue holds before a host changes anything.
const std::vector<DefaultMessage>& defaultMessages();

}  // namespace orbel

#endif
