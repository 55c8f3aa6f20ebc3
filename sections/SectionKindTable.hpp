#ifndef VARN_SECTIONS_SECTIONKINDTABLE_HPP
#define VARN_SECTIONS_SECTIONKINDTABLE_HPP

#include <array>
#include <cstddef>
#include <string_view>

#include <varn/VarnFileContentBuilder.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

// Which class of section a file has of some kind.
enum class SectionClass : unsigned char { None, Plain, Includes, Functions };

// All that is fixed about one kind of section.
struct SectionKindRow {
  VarnFileSectionKind kind;
  std::string_view hostName;
  std::string_view orvName;
  void (VarnFileContentBuilder::*buildStep)();
  // In a generic file, a module file and a data types file.
  SectionClass inFileClass[3];
};

constexpr std::size_t sectionKindCount = 22;

// The one place where the kinds are listed: the row of a kind stands at the kind's value, and the
// rows are in the order of the builder steps.
extern const std::array<SectionKindRow, sectionKindCount> sectionKindTable;

// The kind that the template engine calls `name`, or -1.
int findSectionKindByOrvName(std::string_view name);

}  // namespace Varn

#endif
