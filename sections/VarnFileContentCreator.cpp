#include "varn/VarnFileContentCreator.hpp"

#include <memory>

#include <varn/VarnFileContent.hpp>
#include <varn/VarnFileContentBuilder.hpp>

#include "sections/SectionKindTable.hpp"

namespace Varn {

VarnFileContent* VarnFileContentCreator::createFileContent(VarnFileContentBuilder& builder) {
  builder.buildContent();
  try {
    for (const SectionKindRow& row : sectionKindTable) (builder.*row.buildStep)();
  } catch (...) {
    const std::unique_ptr<VarnFileContent> unfinished(builder.getFileContent());
    throw;
  }
  return builder.getFileContent();
}

}  // namespace Varn
