#ifndef VARN_BRIDGE_ATTRIBUTETABLE_HPP
#define VARN_BRIDGE_ATTRIBUTETABLE_HPP

#include <string>
#include <string_view>
#include <vector>

#include <varn/VarnFile.hpp>

namespace Varn {

// An attribute that the template engine knows by name, and how a file is asked for it. Of the
// readers the one of the attribute's family is set; a writer is missing when nothing can be
// written.
struct AttributeRow {
  std::string_view name;
  const std::string& (*readString)(const VarnFile&) = nullptr;
  const std::vector<std::string>& (*readStringArray)(const VarnFile&) = nullptr;
  bool (*readBoolean)(const VarnFile&) = nullptr;
  // Sets a string, or adds to a string array.
  void (*writeString)(VarnFile&, const std::string&) = nullptr;
  void (*writeBoolean)(VarnFile&, bool) = nullptr;
};

// The attribute called exactly `name`, or null.
const AttributeRow* findAttribute(std::string_view name);

}  // namespace Varn

#endif
