#include <memory>

#include <varn/VarnModuleFile.hpp>
#include <varn/VarnModuleFileContentBuilder.hpp>

namespace Varn {

VarnModuleFile::VarnModuleFile(const std::string& name)
    : VarnFile(name.substr(0, name.find('\0')), std::make_unique<VarnModuleFileContentBuilder>()) {}

VarnModuleFile::~VarnModuleFile() = default;

std::string VarnModuleFile::getFullyQualifiedKoboTypeName() const { return "Varn.VarnModuleFile"; }

}  // namespace Varn
