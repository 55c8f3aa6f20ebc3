#include "sections/TableContent.hpp"

#include <cstddef>
#include <memory>

namespace Varn {

VarnFileContent* newContent() { return std::make_unique<VarnFileContent>().release(); }

void addSection(VarnFileContent* content, FileClass fileClass, VarnFileSectionKind kind) {
  if (content == nullptr) return;
  const SectionKindRow& row = sectionKindTable[static_cast<std::size_t>(kind)];
  if (row.isInFileClass[static_cast<std::size_t>(fileClass)]) content->addSection(kind);
}

}  // namespace Varn
