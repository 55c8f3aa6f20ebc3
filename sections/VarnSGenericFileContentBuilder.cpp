#include "varn/VarnSGenericFileContentBuilder.hpp"

#include "sections/TableContent.hpp"

namespace Varn {

VarnSGenericFileContentBuilder::VarnSGenericFileContentBuilder() = default;
VarnSGenericFileContentBuilder::VarnSGenericFileContentBuilder(
    const VarnSGenericFileContentBuilder&) = default;
VarnSGenericFileContentBuilder& VarnSGenericFileContentBuilder::operator=(
    const VarnSGenericFileContentBuilder&) = default;
VarnSGenericFileContentBuilder::~VarnSGenericFileContentBuilder() = default;

void VarnSGenericFileContentBuilder::buildContent() { content_ = newContent(); }

void VarnSGenericFileContentBuilder::buildBannerSection() {
  addSection(content_, FileClass::GenericFile, BANNER_SECTION);
}
void VarnSGenericFileContentBuilder::buildIncludesSection() {
  addSection(content_, FileClass::GenericFile, INCLUDES_SECTION);
}
void VarnSGenericFileContentBuilder::buildModelTypesIncludesSection() {
  addSection(content_, FileClass::GenericFile, MODELTYPES_INCLUDES_SECTION);
}
void VarnSGenericFileContentBuilder::buildModelTypesDefinesSection() {
  addSection(content_, FileClass::GenericFile, MODELTYPES_DEFINES_SECTION);
}
void VarnSGenericFileContentBuilder::buildDefinesSection() {
  addSection(content_, FileClass::GenericFile, DEFINES_SECTION);
}
void VarnSGenericFileContentBuilder::buildModelTypesTypedefsSection() {
  addSection(content_, FileClass::GenericFile, MODELTYPES_TYPEDEFS_SECTION);
}
void VarnSGenericFileContentBuilder::buildIntrinsicTypesSection() {
  addSection(content_, FileClass::GenericFile, INTRINSIC_TYPES_SECTION);
}
void VarnSGenericFileContentBuilder::buildPrimitiveTypedefsSection() {
  addSection(content_, FileClass::GenericFile, PRIMITIVE_TYPEDEFS_SECTION);
}
void VarnSGenericFileContentBuilder::buildUserTopSection() {
  addSection(content_, FileClass::GenericFile, USERTOP_SECTION);
}
void VarnSGenericFileContentBuilder::buildTypedefsSection() {
  addSection(content_, FileClass::GenericFile, TYPEDEFS_SECTION);
}
void VarnSGenericFileContentBuilder::buildForwardDeclarationsSection() {
  addSection(content_, FileClass::GenericFile, FORWARD_DECLS_SECTION);
}
void VarnSGenericFileContentBuilder::buildEnumsSection() {
  addSection(content_, FileClass::GenericFile, ENUMERATIONS_SECTION);
}
void VarnSGenericFileContentBuilder::buildDefinitionsSection() {
  addSection(content_, FileClass::GenericFile, DEFINITIONS_SECTION);
}
void VarnSGenericFileContentBuilder::buildExternDataSection() {
  addSection(content_, FileClass::GenericFile, EXTERN_DATA_SECTION);
}
void VarnSGenericFileContentBuilder::buildExternFcnsSection() {
  addSection(content_, FileClass::GenericFile, EXTERN_FCNS_SECTION);
}
void VarnSGenericFileContentBuilder::buildFcnPrototypesSection() {
  addSection(content_, FileClass::GenericFile, FCN_PROTOTYPES_SECTION);
}
void VarnSGenericFileContentBuilder::buildDeclarationsSection() {
  addSection(content_, FileClass::GenericFile, DECLARATIONS_SECTION);
}
void VarnSGenericFileContentBuilder::buildFunctionsSection() {
  addSection(content_, FileClass::GenericFile, FUNCTIONS_SECTION);
}
void VarnSGenericFileContentBuilder::buildCompilerErrorsSection() {
  addSection(content_, FileClass::GenericFile, COMPILER_ERRORS_SECTION);
}
void VarnSGenericFileContentBuilder::buildCompilerWarningsSection() {
  addSection(content_, FileClass::GenericFile, COMPILER_WARNINGS_SECTION);
}
void VarnSGenericFileContentBuilder::buildDocumentationSection() {
  addSection(content_, FileClass::GenericFile, DOCUMENTATION_SECTION);
}
void VarnSGenericFileContentBuilder::buildUserBottomSection() {
  addSection(content_, FileClass::GenericFile, USERBOTTOM_SECTION);
}

VarnFileContent* VarnSGenericFileContentBuilder::getFileContent() { return content_; }

}  // namespace Varn
