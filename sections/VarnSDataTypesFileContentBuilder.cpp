#include "varn/VarnSDataTypesFileContentBuilder.hpp"

#include "sections/TableContent.hpp"

namespace Varn {

VarnSDataTypesFileContentBuilder::VarnSDataTypesFileContentBuilder() = default;
VarnSDataTypesFileContentBuilder::VarnSDataTypesFileContentBuilder(
    const VarnSDataTypesFileContentBuilder&) = default;
VarnSDataTypesFileContentBuilder& VarnSDataTypesFileContentBuilder::operator=(
    const VarnSDataTypesFileContentBuilder&) = default;
VarnSDataTypesFileContentBuilder::~VarnSDataTypesFileContentBuilder() = default;

void VarnSDataTypesFileContentBuilder::buildContent() { content_ = newContent(); }

void VarnSDataTypesFileContentBuilder::buildIncludesSection() {
  addSection(content_, FileClass::DataTypesFile, INCLUDES_SECTION);
}
void VarnSDataTypesFileContentBuilder::buildDefinesSection() {
  addSection(content_, FileClass::DataTypesFile, DEFINES_SECTION);
}
void VarnSDataTypesFileContentBuilder::buildTypedefsSection() {
  addSection(content_, FileClass::DataTypesFile, TYPEDEFS_SECTION);
}

VarnFileContent* VarnSDataTypesFileContentBuilder::getFileContent() { return content_; }

}  // namespace Varn
