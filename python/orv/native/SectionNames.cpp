#include "python/orv/native/SectionNames.hpp"

#include <unordered_map>

#include <pybind11/pybind11.h>

#include <varn/FileSection.hpp>

namespace orv {
namespace {

using Varn::VarnFileSectionKind;
using KindsByName = std::unordered_map<std::string_view, VarnFileSectionKind>;

std::array<std::string, 22> makeSectionNames() {
  std::array<std::string, 22> names;
  for (std::size_t kind = 0; kind < names.size(); ++kind) {
    names[kind] = Varn::getOrvSectionNameFromEnum(static_cast<VarnFileSectionKind>(kind));
  }
  names[Varn::FORWARD_DECLS_SECTION] = "ForwardDecls";
  return names;
}

KindsByName makeKindsByName() {
  KindsByName kinds;
  for (std::size_t kind = 0; kind < sectionNames().size(); ++kind) {
    kinds.emplace(sectionNames()[kind], static_cast<VarnFileSectionKind>(kind));
  }
  return kinds;
}

std::string quoted(std::string_view name) { return '"' + std::string(name) + '"'; }

// The names of the sections that `file` has; of all sections when it is null.
std::string joinedNames(const Varn::VarnFile* file) {
  std::string joined;
  for (std::size_t kind = 0; kind < sectionNames().size(); ++kind) {
    if (file != nullptr && !file->hasSection(static_cast<VarnFileSectionKind>(kind))) continue;
    joined += (joined.empty() ? "" : ", ") + sectionNames()[kind];
  }
  return joined;
}

}  // namespace

const std::array<std::string, 22>& sectionNames() {
  static const std::array<std::string, 22> names = makeSectionNames();
  return names;
}

VarnFileSectionKind sectionKind(std::string_view name) {
  static const KindsByName kinds = makeKindsByName();
  const auto found = kinds.find(name);
  if (found != kinds.end()) return found->second;
  throw pybind11::value_error("there is no section " + quoted(name) + "; the sections are " +
                              joinedNames(nullptr));
}

void requireSection(const Varn::VarnFile& file, VarnFileSectionKind kind) {
  if (file.hasSection(kind)) return;
  throw pybind11::value_error("the file " + quoted(file.getNameAscii()) + " has no section " +
                              quoted(sectionNames()[kind]) + "; it has " + joinedNames(&file));
}

}  // namespace orv
