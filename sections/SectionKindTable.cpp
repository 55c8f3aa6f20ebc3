#include "sections/SectionKindTable.hpp"

#include <string>

#include "sections/NameTable.hpp"

namespace Varn {
namespace {

using Builder = VarnFileContentBuilder;
constexpr auto Plain = SectionClass::Plain;
constexpr auto Includes = SectionClass::Includes;
constexpr auto Functions = SectionClass::Functions;
constexpr bool yes = true;
constexpr bool no = false;

// clang-format off
constexpr std::array<SectionKindRow, sectionKindCount> table = {{
    {BANNER_SECTION, "BANNER_SECTION", "Banner",
     &Builder::buildBannerSection, Plain, {yes, no, no}},
    {INCLUDES_SECTION, "INCLUDES_SECTION", "Includes",
     &Builder::buildIncludesSection, Includes, {yes, yes, yes}},
    {MODELTYPES_INCLUDES_SECTION, "MODELTYPES_INCLUDES_SECTION", "ModelTypesIncludes",
     &Builder::buildModelTypesIncludesSection, Plain, {yes, no, no}},
    {MODELTYPES_DEFINES_SECTION, "MODELTYPES_DEFINES_SECTION", "ModelTypesDefines",
     &Builder::buildModelTypesDefinesSection, Plain, {yes, no, no}},
    {DEFINES_SECTION, "DEFINES_SECTION", "Defines",
     &Builder::buildDefinesSection, Plain, {yes, yes, yes}},
    {MODELTYPES_TYPEDEFS_SECTION, "MODELTYPES_TYPEDEFS_SECTION", "ModelTypesTypedefs",
     &Builder::buildModelTypesTypedefsSection, Plain, {yes, no, no}},
    {INTRINSIC_TYPES_SECTION, "INTRINSIC_TYPES_SECTION", "IntrinsicTypes",
     &Builder::buildIntrinsicTypesSection, Plain, {yes, no, no}},
    {PRIMITIVE_TYPEDEFS_SECTION, "PRIMITIVE_TYPEDEFS_SECTION", "PrimitiveTypedefs",
     &Builder::buildPrimitiveTypedefsSection, Plain, {yes, no, no}},
    {USERTOP_SECTION, "USERTOP_SECTION", "UserTop",
     &Builder::buildUserTopSection, Plain, {yes, no, no}},
    {TYPEDEFS_SECTION, "TYPEDEFS_SECTION", "Typedefs",
     &Builder::buildTypedefsSection, Plain, {yes, yes, yes}},
    {FORWARD_DECLS_SECTION, "FORWARD_DECLS_SECTION", "",
     &Builder::buildForwardDeclarationsSection, Plain, {yes, yes, no}},
    {ENUMERATIONS_SECTION, "ENUMERATIONS_SECTION", "Enums",
     &Builder::buildEnumsSection, Plain, {yes, no, no}},
    {DEFINITIONS_SECTION, "DEFINITIONS_SECTION", "Definitions",
     &Builder::buildDefinitionsSection, Plain, {yes, no, no}},
    {EXTERN_DATA_SECTION, "EXTERN_DATA_SECTION", "ExternData",
     &Builder::buildExternDataSection, Plain, {yes, yes, no}},
    {EXTERN_FCNS_SECTION, "EXTERN_FCNS_SECTION", "ExternFcns",
     &Builder::buildExternFcnsSection, Plain, {yes, yes, no}},
    {FCN_PROTOTYPES_SECTION, "FCN_PROTOTYPES_SECTION", "FcnPrototypes",
     &Builder::buildFcnPrototypesSection, Plain, {yes, yes, no}},
    {DECLARATIONS_SECTION, "DECLARATIONS_SECTION", "Declarations",
     &Builder::buildDeclarationsSection, Plain, {yes, yes, no}},
    {FUNCTIONS_SECTION, "FUNCTIONS_SECTION", "Functions",
     &Builder::buildFunctionsSection, Functions, {yes, yes, no}},
    {COMPILER_ERRORS_SECTION, "COMPILER_ERRORS_SECTION", "CompilerErrors",
     &Builder::buildCompilerErrorsSection, Plain, {yes, no, no}},
    {COMPILER_WARNINGS_SECTION, "COMPILER_WARNINGS_SECTION", "CompilerWarnings",
     &Builder::buildCompilerWarningsSection, Plain, {yes, no, no}},
    {DOCUMENTATION_SECTION, "DOCUMENTATION_SECTION", "Documentation",
     &Builder::buildDocumentationSection, Plain, {yes, yes, no}},
    {USERBOTTOM_SECTION, "USERBOTTOM_SECTION", "UserBottom",
     &Builder::buildUserBottomSection, Plain, {yes, no, no}},
}};
// clang-format on

constexpr bool rowsAreAtTheirKinds() {
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (static_cast<std::size_t>(table[i].kind) != i) return false;
  }
  return true;
}
static_assert(rowsAreAtTheirKinds());

template <std::string_view SectionKindRow::*Name>
constexpr NameTable<sectionKindCount> makeNameTable() {
  std::array<std::string_view, sectionKindCount> names{};
  for (std::size_t i = 0; i < table.size(); ++i) names[i] = table[i].*Name;
  return NameTable<sectionKindCount>(names);
}

constexpr auto kindsByHostName = makeNameTable<&SectionKindRow::hostName>();
constexpr auto kindsByOrvName = makeNameTable<&SectionKindRow::orvName>();

}  // namespace

const std::array<SectionKindRow, sectionKindCount> sectionKindTable = table;

int findSectionKindByOrvName(std::string_view name) { return kindsByOrvName.find(name); }

std::string getOrvSectionNameFromEnum(VarnFileSectionKind kind) {
  const auto position = static_cast<std::size_t>(static_cast<unsigned int>(kind));
  return position < table.size() ? std::string(table[position].orvName) : std::string();
}

VarnFileSectionKind getSectionKindFromName(const std::string& name) {
  const int position = kindsByHostName.find(name);
  return position < 0 ? BANNER_SECTION : static_cast<VarnFileSectionKind>(position);
}

}  // namespace Varn
