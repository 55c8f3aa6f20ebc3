#include <memory>

#include <varn/FileSection.hpp>
#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>
#include <varn/TableFileContentBuilder.hpp>
#include <varn/VarnFileContent.hpp>

#include "sections/SectionKindTable.hpp"

namespace Varn {
namespace {

std::unique_ptr<FileSection> makeSection(SectionClass sectionClass) {
  switch (sectionClass) {
    case SectionClass::Plain:
      return std::make_unique<FileSection>();
    case SectionClass::Includes:
      return std::make_unique<IncludesSection>();
    case SectionClass::Functions:
      return std::make_unique<FunctionsSection>();
    case SectionClass::None:
      break;
  }
  return nullptr;
}

}  // namespace

TableFileContentBuilder::TableFileContentBuilder(FileClass fileClass) : fileClass_(fileClass) {}

TableFileContentBuilder::~TableFileContentBuilder() = default;

void TableFileContentBuilder::buildContent() {
  content_ = std::make_unique<VarnFileContent>().release();
}

void TableFileContentBuilder::buildSection(VarnFileSectionKind kind) {
  if (content_ == nullptr) return;
  const SectionKindRow& row = sectionKindTable[static_cast<std::size_t>(kind)];
  const SectionClass sectionClass = row.inFileClass[fileClass_];
  if (sectionClass != SectionClass::None) content_->setSection(kind, makeSection(sectionClass));
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
