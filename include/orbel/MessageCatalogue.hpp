#ifndef ORBEL_MESSAGECATALOGUE_HPP
#define ORBEL_MESSAGECATALOGUE_HPP

#include <string>
#include <vector>

#include <orbel/Diagnostics.hpp>

namespace orbel {

// The texts of messages, by identifier. Placeholders "{1}", "{2}", ... are replaced by the
// arguments, in the order of the message record; "{{" and "}}" are escaped braces. The catalogue is
// process-wide and may be used by several threads at once; a host replaces entries to translate
// them.

// Sets the words of the message `component`:`identifier`, replacing any that were there.
ORBEL_EXPORT void setMessage(const std::string& component, const std::string& identifier,
                             const std::string& words);

// The same for a module's own messages, without replacing words that a host has set already.
ORBEL_EXPORT void addMessage(const std::string& component, const std::string& identifier,
                             const std::string& words);

// The words of the message with its arguments filled in. A message that is not in the catalogue
// gives its full ID and its arguments, so that nothing is ever reported without words. Numbers are
// written without a fraction when they have none, in no locale.
ORBEL_EXPORT std::string formatMessage(const MessageRecord& record);

}  // namespace orbel

#endif
