#include "varn/VarnModuleFileContentBuilder.hpp"

#include "sections/TableContent.hpp"

namespace Varn {

VarnModuleFileContentBuilder::VarnModuleFileContentBuilder() = default;
VarnModuleFileContentBuilder::VarnModuleFileContentBuilder(const VarnModuleFileContentBuilder&) =
    default;
VarnModuleFileContentBuilder& VarnModuleFileContentBuilder::operator=(
    const VarnModuleFileContentBuilder&) = default;
VarnModuleFileContentBuilder::~VarnModuleFileContentBuilder() = default;

void VarnModuleFileContentBuilder::buildContent() { content_ = newContent(); }

void VarnModuleFileContentBuilder::buildIncludesSection() {
  addSection(content_, FileClass::ModuleFile, INCLUDES_SECTION);
}
void VarnModuleFileContentBuilder::buildDefinesSection() {
  addSection(content_, FileClass::ModuleFile, DEFINES_SECTION);
}
void VarnModuleFileContentBuilder::buildTypedefsSection() {
  addSection(content_, FileClass::ModuleFile, TYPEDEFS_SECTION);
}
void VarnModuleFileContentBuilder::buildForwardDeclarationsSection() {
  addSection(content_, FileClass::ModuleFile, FORWARD_DECLS_SECTION);
}
void VarnModuleFileContentBuilder::buildExternDataSection() {
  addSection(content_, FileClass::ModuleFile, EXTERN_DATA_SECTION);
}
void VarnModuleFileContentBuilder::buildExternFcnsSection() {
  addSection(content_, FileClass::ModuleFile, EXTERN_FCNS_SECTION);
}
void VarnModuleFileContentBuilder::buildFcnPrototypesSection() {
  addSection(content_, FileClass::ModuleFile, FCN_PROTOTYPES_SECTION);
}
void VarnModuleFileContentBuilder::buildDeclarationsSection() {
  addSection(content_, FileClass::ModuleFile, DECLARATIONS_SECTION);
}
void VarnModuleFileContentBuilder::buildFunctionsSection() {
  addSection(content_, FileClass::ModuleFile, FUNCTIONS_SECTION);
}
void VarnModuleFileContentBuilder::buildDocumentationSection() {
  addSection(content_, FileClass::ModuleFile, DOCUMENTATION_SECTION);
}

VarnFileContent* VarnModuleFileContentBuilder::getFileContent() { return content_; }

}  // namespace Varn
