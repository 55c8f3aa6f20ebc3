#ifndef VARN_FUNCTIONSSECTION_HPP
#define VARN_FUNCTIONSSECTION_HPP

#include <string>

#include <varn/Export.hpp>
#include <varn/FileSection.hpp>
#include <varn/detail/FragmentStore.hpp>

namespace Varn {

// The section of function bodies, each added together with its function's name, so that scripts can
// list the functions of a file.
//
// Text that is appended with the operations of FileSection counts as a function without adding a
// name; from then on bodies and names of equal index no longer belong together. clearContent()
// drops the bodies and keeps the names.
class VARN_EXPORT FunctionsSection : public FileSection {
 public:
  FunctionsSection();
  // Shares the bodies and the names.
  FunctionsSection(const FunctionsSection& source);
  FunctionsSection& operator=(const FunctionsSection&) = delete;
  ~FunctionsSection() override;

  std::string getFullyQualifiedKoboTypeName() const override;

  // Appends `body`, up to its first NUL, as one fragment, and `name`. Names may repeat.
  void addFunction(const std::string& name, const std::string& body);

  // The number of bodies: of fragments, not of names.
  unsigned int getNumberOfFunctions() const;
  // The number of names that addFunction() has recorded.
  unsigned int getNumberOfFunctionNames() const;

  // The body `index` and the name `index`, counted from 0. Preconditions: `index` is below
  // getNumberOfFunctions(), below getNumberOfFunctionNames().
  const std::string& getFunction(unsigned int index) const;
  const std::string& getFunctionName(unsigned int index) const;

  // The same counted from 1, as host scripts count.
  const std::string& kobo_getFunction(unsigned int index) const;
  const std::string& kobo_getFunctionName(unsigned int index) const;

  FileSection* clone() const override;

 private:
  detail::FragmentStore functionNames_;
};

}  // namespace Varn

#endif
