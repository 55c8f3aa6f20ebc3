#ifndef VARN_HOST_DIAGNOSTICS_DIAGNOSTICS_HPP
#define VARN_HOST_DIAGNOSTICS_DIAGNOSTICS_HPP

#include <string>

#include <orbel/Diagnostics.hpp>

namespace Varn {

// The library's messages: one record type per identifier, whose constructor takes exactly the
// message's arguments. All are of the component "Pyx:codeGen".

// A custom section is attached to `current` and was declared again for `requested`.
struct CustomContentPreviousAssociation : orbel::MessageRecord {
  CustomContentPreviousAssociation(const std::string& customSection, const std::string& requested,
                                   const std::string& current);
};

struct CustomContentSectionDoesNotExist : orbel::MessageRecord {
  CustomContentSectionDoesNotExist(const std::string& file, const std::string& customSection);
};

// The text mentions the custom section before and after its requester.
struct CustomContentSectionAlreadyRetrieved : orbel::MessageRecord {
  CustomContentSectionAlreadyRetrieved(const std::string& customSection,
                                       const std::string& requester,
                                       const std::string& retrievedSection);
};

struct CustomContentInvalidBuiltin : orbel::MessageRecord {
  CustomContentInvalidBuiltin(const std::string& customSection, const std::string& builtinSection);
};

struct InvalidFileIndex : orbel::MessageRecord {
  explicit InvalidFileIndex(int index);
};

// Also for the name of a section.
struct InvalidFileAttribute : orbel::MessageRecord {
  explicit InvalidFileAttribute(const std::string& name);
};

struct DuplicateFileEntry : orbel::MessageRecord {
  DuplicateFileEntry(const std::string& name, const std::string& registeredName);
};

// The host's identifier for an error that bundles several errors, in both widths of host text. The
// library carries it and raises no such error.
extern const char bundleErrorId[];
extern const char16_t bundleErrorId16[];

// Throws `record` as a host exception. The caller must not have changed anything yet.
[[noreturn]] void raise(const orbel::MessageRecord& record);

// The text of `record`, each line prefixed with "-->" as a warning's.
std::string renderWarning(const orbel::MessageRecord& record);

}  // namespace Varn

#endif
