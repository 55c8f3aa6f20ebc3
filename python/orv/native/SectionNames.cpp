#include "python/orv/native/SectionNames.hpp"

#include <pybind11/pybind11.h>

#include <varn/FileSection.hpp>
#include <varn/VarnFile.hpp>

namespace orv {
namespace {

using Varn::VarnFileSectionKind;

std::array<std::string, 22> makeSectionNames() {
  std::array<std::string, 22> names;
  for (std::size_t kind = 0; kind < names.size(); ++kind) {
    names[kind] = Varn::getOrvSectionNameFromEnum(static_cast<VarnFileSectionKind>(kind));
  }
  names[Varn::FORWARD_DECLS_SECTION] = "ForwardDecls";
  return names;
}

std::string quoted(std::string_view name) { return '"' + std::string(name) + '"'; }

}  // namespace

const std::array<std::string, 22>& sectionNames() {
  static const std::array<std::string, 22> names = makeSectionNames();
  return names;
}

VarnFileSectionKind sectionKind(std::string_view name) {
  const auto& names = sectionNames();
  for (std::size_t kind = 0; kind < names.size(); ++kind) {
    if (names[kind] == name) return static_cast<VarnFileSectionKind>(kind);
  }
  std::string message = "there is no section " + quoted(name) + "; the sections are ";
  for (const std::string& known : names) message += known + (&known == &names.back() ? "" : ", ");
  throw pybind11::value_error(message);
}

VarnFileSectionKind sectionKindOf(const Varn::VarnFile& file, std::string_view name) {
  const VarnFileSectionKind kind = sectionKind(name);
  if (file.hasSection(kind)) return kind;
  throw pybind11::value_error("the file " + quoted(file.getNameAscii()) + " has no section " +
                              quoted(name) + "; it has " + joinedSectionNames(file));
}

std::string joinedSectionNames(const Varn::VarnFile& file) {
  std::string joined;
  for (std::size_t kind = 0; kind < sectionNames().size(); ++kind) {
    if (!file.hasSection(static_cast<VarnFileSectionKind>(kind))) continue;
    if (!joined.empty()) joined += ", ";
    joined += sectionNames()[kind];
  }
  return joined;
}

void appendText(PackagedFiles& files, int index, VarnFileSectionKind kind, const char* text) {
  if (kind == Varn::FORWARD_DECLS_SECTION) {
    files.file(index).getFileSection(kind).addContent_cstr(text);
  } else {
    files.bridge().addSectionContent(index, sectionNames()[kind], text);
  }
}

std::string sectionText(PackagedFiles& files, int index, VarnFileSectionKind kind) {
  return files.file(index).getFileSection(kind).getContent();
}

void writeSection(PackagedFiles& files, int index, VarnFileSectionKind kind, FILE* stream) {
  if (kind == Varn::FORWARD_DECLS_SECTION) {
    files.file(index).writeSectionToFile(kind, stream);
  } else {
    files.bridge().writeSection(index, sectionNames()[kind], stream);
  }
}

void placeCustomSections(PackagedFiles& files, int index, VarnFileSectionKind kind) {
  Varn::VarnFile& file = files.file(index);
  if (!file.hasSection(kind)) return;
  file.getCustomContent().appendMissingTokens(file.getFileSection(kind), kind);
}

}  // namespace orv
