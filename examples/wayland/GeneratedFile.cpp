#include "GeneratedFile.hpp"

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <boost/make_shared.hpp>

namespace wayland {
namespace {

// Defines come before includes because they open with the include guard.
constexpr std::array<Varn::VarnFileSectionKind, 22> sectionOrder = {
    Varn::BANNER_SECTION,
    Varn::DOCUMENTATION_SECTION,
    Varn::DEFINES_SECTION,
    Varn::USERTOP_SECTION,
    Varn::INCLUDES_SECTION,
    Varn::COMPILER_ERRORS_SECTION,
    Varn::COMPILER_WARNINGS_SECTION,
    Varn::MODELTYPES_INCLUDES_SECTION,
    Varn::MODELTYPES_DEFINES_SECTION,
    Varn::MODELTYPES_TYPEDEFS_SECTION,
    Varn::INTRINSIC_TYPES_SECTION,
    Varn::PRIMITIVE_TYPEDEFS_SECTION,
    Varn::FORWARD_DECLS_SECTION,
    Varn::ENUMERATIONS_SECTION,
    Varn::TYPEDEFS_SECTION,
    Varn::EXTERN_DATA_SECTION,
    Varn::EXTERN_FCNS_SECTION,
    Varn::FCN_PROTOTYPES_SECTION,
    Varn::DECLARATIONS_SECTION,
    Varn::DEFINITIONS_SECTION,
    Varn::FUNCTIONS_SECTION,
    Varn::USERBOTTOM_SECTION,
};

}  // namespace

SharedText shareText(std::string text) {
  return boost::make_shared<Varn::StringFileSectionFragment>(std::move(text));
}

GeneratedFile::GeneratedFile(Varn::VarnFileRepository& repository, int index)
    : bridge_(&repository.orvBridge()), index_(index) {}

Varn::VarnFile& GeneratedFile::file() const { return bridge_->getFileFromIndex(index_); }

std::string GeneratedFile::name() const { return bridge_->getStringAttribute(index_, "Name"); }

void GeneratedFile::setAttribute(const std::string& attribute, const std::string& value) {
  bridge_->setAttribute(index_, attribute, value.c_str());
}

void GeneratedFile::setWrittenToDisk() { bridge_->setAttribute(index_, "WrittenToDisk", true); }

void GeneratedFile::add(const std::string& section, const std::string& text) {
  bridge_->addSectionContent(index_, section, text.c_str());
}

void GeneratedFile::add(const std::string& section, const SharedText& text) {
  bridge_->addSectionContent(index_, section, text);
}

void GeneratedFile::addForwardDeclaration(const std::string& text) {
  file().getFileSection(Varn::FORWARD_DECLS_SECTION).addContent(text);
}

void GeneratedFile::addCustomSection(const std::string& builtin, const std::string& custom) {
  bridge_->addCustomSection(index_, builtin, custom);
}

void GeneratedFile::fillCustomSection(const std::string& custom, const std::string& text) {
  file().getCustomContent().addContentToSection(custom, text);
}

void GeneratedFile::placeCustomSection(const std::string& custom, const std::string& section) {
  add(section, file().getCustomContent().getCustomSectionContent(custom, section));
}

WrittenSize GeneratedFile::write(FILE* stream, const std::string& path) const {
  WrittenSize written;
  for (const Varn::VarnFileSectionKind kind : sectionOrder) {
    const long start = std::ftell(stream);
    const std::string section = Varn::getOrvSectionNameFromEnum(kind);
    if (section.empty()) {
      file().writeSectionToFile(kind, stream);
    } else {
      bridge_->writeSection(index_, section, stream);
    }
    if (std::ferror(stream) != 0) throw std::system_error(errno, std::generic_category(), path);
    const long bytes = std::ftell(stream) - start;
    written.sections += bytes != 0 ? 1 : 0;
    written.bytes += bytes;
  }
  return written;
}

}  // namespace wayland
