#include "sections/TableContent.hpp"

#include <algorithm>
#include <memory>

#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>

namespace Varn {
namespace {

SectionClass sectionClass(const SectionKindRow& row, FileClass fileClass) {
  return row.inFileClass[static_cast<std::size_t>(fileClass)];
}

}  // namespace

VarnFileContent* newContent(FileClass fileClass) {
  const auto plainSections = std::count_if(
      sectionKindTable.begin(), sectionKindTable.end(),
      [&](const auto& row) { return sectionClass(row, fileClass) == SectionClass::Plain; });
  return std::make_unique<VarnFileContent>(static_cast<std::size_t>(plainSections)).release();
}

void addSection(VarnFileContent* content, FileClass fileClass, VarnFileSectionKind kind) {
  if (content == nullptr) return;
  switch (sectionClass(sectionKindTable[static_cast<std::size_t>(kind)], fileClass)) {
    case SectionClass::Plain:
      content->addPlainSection(kind);
      break;
    case SectionClass::Includes:
      content->setSection(kind, std::make_unique<IncludesSection>());
      break;
    case SectionClass::Functions:
      content->setSection(kind, std::make_unique<FunctionsSection>());
      break;
    case SectionClass::None:
      break;
  }
}

}  // namespace Varn
