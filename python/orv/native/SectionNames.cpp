#include "python/orv/native/SectionNames.hpp"

#include <unordered_map>

#include <pybind11/pybind11.h>

#include <varn/FileSection.hpp>

namespace orv {
namespace {

using Varn::VarnFileSectionKind;
using Names = std::array<std::string, 23>;
using NumbersByName = std::unordered_map<std::string_view, int>;

Names makeSectionNames() {
  Names names;
  for (int kind = 0; kind < textSection; ++kind) {
    names[static_cast<std::size_t>(kind)] =
        Varn::getOrvSectionNameFromEnum(static_cast<VarnFileSectionKind>(kind));
  }
  names[Varn::FORWARD_DECLS_SECTION] = "ForwardDecls";
  names[textSection] = "Text";
  return names;
}

const std::string& nameOf(int section) { return sectionNames()[static_cast<std::size_t>(section)]; }

NumbersByName makeNumbersByName() {
  NumbersByName numbers;
  for (int section = 0; section <= textSection; ++section) {
    numbers.emplace(nameOf(section), section);
  }
  return numbers;
}

std::string quoted(std::string_view name) { return '"' + std::string(name) + '"'; }

// The names of the sections that `isWanted` is true for.
template <class Predicate>
std::string joinedNames(Predicate&& isWanted) {
  std::string joined;
  for (int section = 0; section <= textSection; ++section) {
    if (isWanted(section)) joined += (joined.empty() ? "" : ", ") + nameOf(section);
  }
  return joined;
}

}  // namespace

const std::array<std::string, 23>& sectionNames() {
  static const Names names = makeSectionNames();
  return names;
}

int sectionNumber(const PackagedFiles& files, int file, VarnFileSectionKind kind) {
  return files.isText(file) ? textSection : static_cast<int>(kind);
}

int sectionNumber(std::string_view name) {
  static const NumbersByName numbers = makeNumbersByName();
  const auto found = numbers.find(name);
  if (found != numbers.end()) return found->second;
  throw pybind11::value_error("there is no section " + quoted(name) + "; the sections are " +
                              joinedNames([](int) { return true; }));
}

std::optional<VarnFileSectionKind> findSection(PackagedFiles& files, int file, int section) {
  if (files.isText(file) != (section == textSection)) return std::nullopt;
  const auto kind = section == textSection ? textKind : static_cast<VarnFileSectionKind>(section);
  return files.file(file).hasSection(kind) ? std::optional(kind) : std::nullopt;
}

VarnFileSectionKind requireSection(PackagedFiles& files, int file, int section) {
  const auto kind = findSection(files, file, section);
  if (kind) return *kind;
  const auto isHeld = [&](int known) { return findSection(files, file, known).has_value(); };
  throw pybind11::value_error("the file " + quoted(files.file(file).getNameAscii()) +
                              " has no section " + quoted(nameOf(section)) + "; it has " +
                              joinedNames(isHeld));
}

}  // namespace orv
