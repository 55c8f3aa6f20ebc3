#ifndef VARN_CUSTOMSECTION_HPP
#define VARN_CUSTOMSECTION_HPP

#include <string>

#include <varn/Export.hpp>
#include <varn/FileSection.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

// A section that the template engine declares by name and attaches to a built-in section. Its text
// is handed out once: to the engine that asks for it by name, or to the end of the built-in
// section.
//
// It is shared by the CustomContents that know it.
class VARN_EXPORT CustomSection : public FileSection {
 public:
  // An empty section called `name`, attached to `builtin`, not retrieved yet.
  CustomSection(const std::string& name, VarnFileSectionKind builtin);
  // Shares the fragments and copies the rest.
  CustomSection(const CustomSection& source);
  CustomSection& operator=(const CustomSection&) = delete;
  ~CustomSection() override;

  VarnFileSectionKind getBuiltinSection() const { return builtinSection_; }

  // Whether the text is appended to the built-in section when nobody places it: true but for
  // sections attached to the documentation.
  bool isRequired() const { return required_; }

  // Whether the text has been handed out. There is no way back.
  bool isRetrieved() const { return retrieved_; }
  void setIsRetrieved() { retrieved_ = true; }

  // The name followed by "_InUse".
  std::string getSectionToken() const;

  CustomSection* clone() const override;

 private:
  std::string name_;
  VarnFileSectionKind builtinSection_;
  bool retrieved_ = false;
  bool required_;
};

}  // namespace Varn

#endif
