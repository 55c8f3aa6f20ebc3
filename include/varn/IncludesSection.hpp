#ifndef VARN_INCLUDESSECTION_HPP
#define VARN_INCLUDESSECTION_HPP

#include <cstdio>
#include <string>
#include <vector>

#include <boost/unordered_set.hpp>

#include <varn/Export.hpp>
#include <varn/FileSection.hpp>
#include <varn/detail/UniqueNames.hpp>

namespace Varn {

// The section of `#include` lines. Besides the added lines it has two lists of headers that the
// file always needs: required includes, written before everything else, and utility includes,
// written around the added lines.
//
// An entry of the lists is a local header (model_types.h) or carries its own angle brackets
// (<stddef.h>). Text appended with the operations of FileSection joins the added lines as it is.
class VARN_EXPORT IncludesSection : public FileSection {
 public:
  IncludesSection();
  // Shares the fragments; the lists and the names added so far are copied.
  IncludesSection(const IncludesSection& source);
  IncludesSection& operator=(const IncludesSection&) = delete;
  ~IncludesSection() override;

  std::string getFullyQualifiedKoboTypeName() const override;

  // Adds the line for `name` (without brackets or quotes), as a system header or a local one. A
  // name that was added before, in either form, adds nothing, even after clearContent().
  void addInclude(const std::string& name, bool isSystemInclude);

  // Append one entry, unless present.
  void addRequiredInclude(const std::string& name);
  void addUtilityInclude(const std::string& name);
  // Replace the list by `names` as they are, repeats included.
  void setRequiredIncludes(const std::vector<std::string>& names);
  void setUtilityIncludes(const std::vector<std::string>& names);
  // Valid until the list changes.
  const std::vector<std::string>& getRequiredIncludes() const;
  const std::vector<std::string>& getUtilityIncludes() const;

  // The composed text: required includes, utility includes in brackets, the added text, utility
  // includes in quotes. Each line of a list starts and ends with a newline, and is left out when
  // the added text already holds it in that form; empty entries give nothing. An entry of both
  // lists is written twice, and a list's line is not recognised in the first line of the added
  // text, which has no newline before it.
  //
  // Linear in the text and the lists. The reference is valid until the next getContent() on this
  // section, or its destruction.
  const std::string& getContent() const override;

  // Writes the composed text with one `fwrite`. Without text, does not touch the stream.
  void writeToFile(FILE* stream) const override;

  FileSection* clone() const override;

 private:
  boost::unordered_set<std::string> addedNames_;
  detail::UniqueNames requiredIncludes_;
  detail::UniqueNames utilityIncludes_;
  mutable std::string composedContent_;
};

}  // namespace Varn

#endif
