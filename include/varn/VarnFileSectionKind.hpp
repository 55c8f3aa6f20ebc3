#ifndef VARN_VARNFILESECTIONKIND_HPP
#define VARN_VARNFILESECTIONKIND_HPP

#include <string>

#include <varn/Export.hpp>

namespace Varn {

// The kinds of C text that a generated file is cut into. A kind is the key under which a file's
// content holds its section and the place that a custom section is attached to.
//
// The values are dense and fixed: they are the order in which a file's sections are built.
enum VarnFileSectionKind : int {
  BANNER_SECTION = 0,
  INCLUDES_SECTION = 1,
  MODELTYPES_INCLUDES_SECTION = 2,
  MODELTYPES_DEFINES_SECTION = 3,
  DEFINES_SECTION = 4,
  MODELTYPES_TYPEDEFS_SECTION = 5,
  INTRINSIC_TYPES_SECTION = 6,
  PRIMITIVE_TYPEDEFS_SECTION = 7,
  USERTOP_SECTION = 8,
  TYPEDEFS_SECTION = 9,
  FORWARD_DECLS_SECTION = 10,
  ENUMERATIONS_SECTION = 11,
  DEFINITIONS_SECTION = 12,
  EXTERN_DATA_SECTION = 13,
  EXTERN_FCNS_SECTION = 14,
  FCN_PROTOTYPES_SECTION = 15,
  DECLARATIONS_SECTION = 16,
  FUNCTIONS_SECTION = 17,
  COMPILER_ERRORS_SECTION = 18,
  COMPILER_WARNINGS_SECTION = 19,
  DOCUMENTATION_SECTION = 20,
  USERBOTTOM_SECTION = 21
};

// The short name under which the template engine knows `kind`, such as "Typedefs". Empty for
// FORWARD_DECLS_SECTION, which has no such name, and for a value that is no kind.
VARN_EXPORT std::string getOrvSectionNameFromEnum(VarnFileSectionKind kind);

// The kind whose enumerator is spelled exactly `name`, such as "TYPEDEFS_SECTION": the form in
// which host scripts name a kind. Any other name selects BANNER_SECTION.
VARN_EXPORT VarnFileSectionKind getSectionKindFromName(const std::string& name);

}  // namespace Varn

#endif
