#include "varn/VarnFileContentBuilder.hpp"

namespace Varn {

VarnFileContentBuilder::VarnFileContentBuilder() = default;
VarnFileContentBuilder::VarnFileContentBuilder(const VarnFileContentBuilder&) = default;
VarnFileContentBuilder& VarnFileContentBuilder::operator=(const VarnFileContentBuilder&) = default;
VarnFileContentBuilder::~VarnFileContentBuilder() = default;

void VarnFileContentBuilder::buildContent() {}
void VarnFileContentBuilder::buildBannerSection() {}
void VarnFileContentBuilder::buildIncludesSection() {}
void VarnFileContentBuilder::buildModelTypesIncludesSection() {}
void VarnFileContentBuilder::buildModelTypesDefinesSection() {}
void VarnFileContentBuilder::buildDefinesSection() {}
void VarnFileContentBuilder::buildModelTypesTypedefsSection() {}
void VarnFileContentBuilder::buildIntrinsicTypesSection() {}
void VarnFileContentBuilder::buildPrimitiveTypedefsSection() {}
void VarnFileContentBuilder::buildUserTopSection() {}
void VarnFileContentBuilder::buildTypedefsSection() {}
void VarnFileContentBuilder::buildForwardDeclarationsSection() {}
void VarnFileContentBuilder::buildEnumsSection() {}
void VarnFileContentBuilder::buildDefinitionsSection() {}
void VarnFileContentBuilder::buildExternDataSection() {}
void VarnFileContentBuilder::buildExternFcnsSection() {}
void VarnFileContentBuilder::buildFcnPrototypesSection() {}
void VarnFileContentBuilder::buildDeclarationsSection() {}
void VarnFileContentBuilder::buildFunctionsSection() {}
void VarnFileContentBuilder::buildCompilerErrorsSection() {}
void VarnFileContentBuilder::buildCompilerWarningsSection() {}
void VarnFileContentBuilder::buildDocumentationSection() {}
void VarnFileContentBuilder::buildUserBottomSection() {}

VarnFileContent* VarnFileContentBuilder::getFileContent() { return nullptr; }

}  // namespace Varn
