#include <memory>

#include <varn/VarnGenericFile.hpp>
#include <varn/VarnSGenericFileContentBuilder.hpp>

namespace Varn {

VarnGenericFile::VarnGenericFile(const std::string& name)
    : VarnFile(name, std::make_unique<VarnSGenericFileContentBuilder>()) {}

VarnGenericFile::~VarnGenericFile() = default;

std::string VarnGenericFile::getFullyQualifiedKoboTypeName() const {
  return "Varn.VarnGenericFile";
}

}  // namespace Varn
