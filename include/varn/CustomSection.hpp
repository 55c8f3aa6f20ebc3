#ifndef VARN_CUSTOMSECTION_HPP
#define VARN_CUSTOMSECTION_HPP

#include <string>

#include <varn/Export.hpp>
#include <varn/FileSection.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

// A section that the template engine declares by name and attaches to a built-in section. Its text
// is retrieved once: by the engine, by name, or to be appended to the built-in section.
//
// It is shared by the CustomContents that hold it.
class VARN_EXPORT CustomSection : public FileSection {
 public:
  // An empty section called `name`, attached to `builtin`, not retrieved yet.
  CustomSection(const std::string& name, VarnFileSectionKind builtin);
  // Shares the fragments and copies the rest.
  CustomSection(const CustomSection& source);
  CustomSection& operator=(const CustomSection&) = delete;
  ~CustomSection() override;

  VarnFileSectionKind getBuiltinSection();

  // Whether the text is appended to the built-in section if it is not retrieved: true unless
  // attached to the documentation.
  bool isRequired() const;

  // Whether the text has been retrieved. This is never reset.
  bool isRetrieved() const;
  void setIsRetrieved();

  // The name followed by "_InUse".
  std::string getSectionToken();

  FileSection* clone() const override;

 private:
  std::string name_;
  VarnFileSectionKind builtinSection_;
  bool retrieved_ = false;
  bool required_;
};

}  // namespace Varn

#endif
