#ifndef VARN_BRIDGE_ATTRIBUTETABLE_HPP
#define VARN_BRIDGE_ATTRIBUTETABLE_HPP

#include <string>
#include <string_view>
#include <vector>

#include <varn/VarnFile.hpp>

namespace Varn {

// How an attribute is read from a file and written to it. Only the reader of the attribute's kind
// is set; a read-only attribute has no writer.
struct AttributeAccess {
  const std::string& (*readString)(const VarnFile&) = nullptr;
  const std::vector<std::string>& (*readStringArray)(const VarnFile&) = nullptr;
  bool (*readBoolean)(const VarnFile&) = nullptr;
  // Sets a string, or adds to a string array.
  void (*writeString)(VarnFile&, const std::string&) = nullptr;
  void (*writeBoolean)(VarnFile&, bool) = nullptr;
};

// The access to the attribute called exactly `name`, or null.
const AttributeAccess* findAttribute(std::string_view name);

}  // namespace Varn

#endif
