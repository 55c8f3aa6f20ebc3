#ifndef VARN_SECTIONS_SECTIONKINDTABLE_HPP
#define VARN_SECTIONS_SECTIONKINDTABLE_HPP

#include <array>
#include <cstddef>
#include <string_view>

#include <varn/VarnFileContentBuilder.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

// The class of the sections of some kind.
enum class SectionClass : unsigned char { Plain, Includes, Functions };

// The classes of files, in the order of the table's columns.
enum class FileClass : unsigned char { GenericFile, ModuleFile, DataTypesFile };

// The fixed properties of one kind of section.
struct SectionKindRow {
  VarnFileSectionKind kind;
  std::string_view hostName;
  std::string_view orvName;
  void (VarnFileContentBuilder::*buildStep)();
  SectionClass sectionClass;
  // Whether a file has such a section, by FileClass.
  bool isInFileClass[3];
};

constexpr std::size_t sectionKindCount = 22;

// The only list of the kinds. The row of a kind is at the kind's value, and the rows are in the
// order of the builder steps.
extern const std::array<SectionKindRow, sectionKindCount> sectionKindTable;

// The kind that the template engine calls `name`, or -1.
int findSectionKindByOrvName(std::string_view name);

}  // namespace Varn

#endif
