#ifndef ORV_MODELS_XMLDOCTYPE_HPP
#define ORV_MODELS_XMLDOCTYPE_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace orv {

// The external identifier of a document type declaration: where it begins, and blanks to put in its
// place, with its new lines. No blanks when there is none, or when it is not well-formed.
struct ExternalId {
  std::size_t begin = 0;
  std::string blanks;
};

// Understands encodings that have ASCII characters as single bytes.
ExternalId externalIdOf(std::string_view text);

}  // namespace orv

#endif
