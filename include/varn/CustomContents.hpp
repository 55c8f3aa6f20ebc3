#ifndef VARN_CUSTOMCONTENTS_HPP
#define VARN_CUSTOMCONTENTS_HPP

#include <memory>
#include <string>

#include <varn/CustomSection.hpp>
#include <varn/Export.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

// The custom sections of one file: declared, filled in any order, and each placed exactly once, by
// the engine or at the end of its built-in section, so that no declared text is lost.
//
// A copy has its own tables and tokens in use, and shares the sections with its source: what is
// retrieved through one is retrieved for both.
class VARN_EXPORT CustomContents {
 public:
  // `fileName` is used in messages only.
  explicit CustomContents(const std::string& fileName);
  CustomContents(const CustomContents&);
  CustomContents& operator=(const CustomContents& source);
  ~CustomContents();

  // Declares the custom section `name` and attaches it to `builtin`. Idempotent.
  // Throws orbel::HostException "CustomContentPreviousAssociation" (custom section, requested
  // built-in section, current one) when it is attached to another one. A failure changes nothing.
  void addCustomSection(const std::string& name, VarnFileSectionKind builtin);

  // Appends `text`, up to its first NUL, to the custom section `name`, before or after its
  // retrieval; what comes after is never placed. Throws orbel::HostException
  // "CustomContentSectionDoesNotExist" (file, custom section) for an unknown name.
  void addContentToSection(const std::string& name, const char* text);
  void addContentToSection(const std::string& name, const std::string& text);

  // Returns the text of the custom section `name` and marks it retrieved. An unknown name gives an
  // empty text. Throws orbel::HostException "CustomContentSectionAlreadyRetrieved" (custom section,
  // `requester`, custom section) when it was retrieved before. The reference is valid until the
  // section is appended to or destroyed.
  const std::string& getCustomSectionContent(const std::string& name, const std::string& requester);

  bool isCustomSection(const std::string& name);

  // Declares that the engine's own text refers to the custom section `name`, which need not exist
  // yet: appendMissingTokens() then skips it.
  void setCustomTokenInUse(const std::string& name);

  // Appends to `builtinSection` the text of each custom section attached to `builtin`, in the order
  // of declaration, that is required, not in use and not retrieved, one fragment each, and marks it
  // retrieved. An empty one is appended as an empty fragment.
  void appendMissingTokens(FileSection& builtinSection, VarnFileSectionKind builtin);

 private:
  struct Tables;

  Tables& tables();
  // The section, or null.
  CustomSection* find(const std::string& name) const;

  std::string fileName_;
  // Data that few files need, kept out of line.
  std::unique_ptr<Tables> tables_;
};

}  // namespace Varn

#endif
