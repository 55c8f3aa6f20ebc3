#include <memory>

#include <varn/VarnDataTypesFile.hpp>
#include <varn/VarnSDataTypesFileContentBuilder.hpp>

namespace Varn {

VarnDataTypesFile::VarnDataTypesFile(const std::string& name)
    : VarnFile(name, std::make_unique<VarnSDataTypesFileContentBuilder>()) {}

VarnDataTypesFile::~VarnDataTypesFile() = default;

std::string VarnDataTypesFile::getFullyQualifiedKoboTypeName() const {
  return "Varn.VarnDataTypesFile";
}

}  // namespace Varn
