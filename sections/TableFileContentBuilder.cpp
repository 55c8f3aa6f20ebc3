#include <cstddef>
#include <memory>

#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>
#include <varn/TableFileContentBuilder.hpp>
#include <varn/VarnFileContent.hpp>

#include "sections/SectionKindTable.hpp"

namespace Varn {
namespace {

std::size_t countPlainSections(std::size_t fileClass) {
  std::size_t count = 0;
  for (const SectionKindRow& row : sectionKindTable) {
    if (row.inFileClass[fileClass] == SectionClass::Plain) ++count;
  }
  return count;
}

}  // namespace

TableFileContentBuilder::TableFileContentBuilder(FileClass fileClass) : fileClass_(fileClass) {}

TableFileContentBuilder::~TableFileContentBuilder() = default;

void TableFileContentBuilder::buildContent() {
  content_ = std::make_unique<VarnFileContent>(countPlainSections(fileClass_)).release();
}

void TableFileContentBuilder::buildSection(VarnFileSectionKind kind) {
  if (content_ == nullptr) return;
  switch (sectionKindTable[static_cast<std::size_t>(kind)].inFileClass[fileClass_]) {
    case SectionClass::Plain:
      content_->addPlainSection(kind);
      break;
    case SectionClass::Includes:
      content_->setSection(kind, std::make_unique<IncludesSection>());
      break;
    case SectionClass::Functions:
      content_->setSection(kind, std::make_unique<FunctionsSection>());
      break;
    case SectionClass::None:
      break;
  }
}

void TableFileContentBuilder::buildBannerSection() { buildSection(BANNER_SECTION); }
void TableFileContentBuilder::buildIncludesSection() { buildSection(INCLUDES_SECTION); }
void TableFileContentBuilder::buildModelTypesIncludesSection() {
  buildSection(MODELTYPES_INCLUDES_SECTION);
}
void TableFileContentBuilder::buildModelTypesDefinesSection() {
  buildSection(MODELTYPES_DEFINES_SECTION);
}
void TableFileContentBuilder::buildDefinesSection() { buildSection(DEFINES_SECTION); }
void TableFileContentBuilder::buildModelTypesTypedefsSection() {
  buildSection(MODELTYPES_TYPEDEFS_SECTION);
}
void TableFileContentBuilder::buildIntrinsicTypesSection() {
  buildSection(INTRINSIC_TYPES_SECTION);
}
void TableFileContentBuilder::buildPrimitiveTypedefsSection() {
  buildSection(PRIMITIVE_TYPEDEFS_SECTION);
}
void TableFileContentBuilder::buildUserTopSection() { buildSection(USERTOP_SECTION); }
void TableFileContentBuilder::buildTypedefsSection() { buildSection(TYPEDEFS_SECTION); }
void TableFileContentBuilder::buildForwardDeclarationsSection() {
  buildSection(FORWARD_DECLS_SECTION);
}
void TableFileContentBuilder::buildEnumsSection() { buildSection(ENUMERATIONS_SECTION); }
void TableFileContentBuilder::buildDefinitionsSection() { buildSection(DEFINITIONS_SECTION); }
void TableFileContentBuilder::buildExternDataSection() { buildSection(EXTERN_DATA_SECTION); }
void TableFileContentBuilder::buildExternFcnsSection() { buildSection(EXTERN_FCNS_SECTION); }
void TableFileContentBuilder::buildFcnPrototypesSection() { buildSection(FCN_PROTOTYPES_SECTION); }
void TableFileContentBuilder::buildDeclarationsSection() { buildSection(DECLARATIONS_SECTION); }
void TableFileContentBuilder::buildFunctionsSection() { buildSection(FUNCTIONS_SECTION); }
void TableFileContentBuilder::buildCompilerErrorsSection() {
  buildSection(COMPILER_ERRORS_SECTION);
}
void TableFileContentBuilder::buildCompilerWarningsSection() {
  buildSection(COMPILER_WARNINGS_SECTION);
}
void TableFileContentBuilder::buildDocumentationSection() { buildSection(DOCUMENTATION_SECTION); }
void TableFileContentBuilder::buildUserBottomSection() { buildSection(USERBOTTOM_SECTION); }

VarnFileContent* TableFileContentBuilder::getFileContent() { return content_; }

}  // namespace Varn
