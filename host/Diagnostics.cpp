#include "host/Diagnostics.hpp"

#include <utility>

namespace Varn {
namespace {

constexpr const char* codeGen = "Pyx:codeGen";

}  // namespace

CustomContentPreviousAssociation::CustomContentPreviousAssociation(const std::string& customSection,
                                                                   const std::string& requested,
                                                                   const std::string& current)
    : MessageRecord(codeGen, "CustomContentPreviousAssociation",
                    {customSection, requested, current}) {}

CustomContentSectionDoesNotExist::CustomContentSectionDoesNotExist(const std::string& file,
                                                                   const std::string& customSection)
    : MessageRecord(codeGen, "CustomContentSectionDoesNotExist", {file, customSection}) {}

CustomContentSectionAlreadyRetrieved::CustomContentSectionAlreadyRetrieved(
    const std::string& customSection, const std::string& requester,
    const std::string& retrievedSection)
    : MessageRecord(codeGen, "CustomContentSectionAlreadyRetrieved",
                    {customSection, requester, retrievedSection}) {}

CustomContentInvalidBuiltin::CustomContentInvalidBuiltin(const std::string& customSection,
                                                         const std::string& builtinSection)
    : MessageRecord(codeGen, "CustomContentInvalidBuiltin", {customSection, builtinSection}) {}

InvalidFileIndex::InvalidFileIndex(int index)
    : MessageRecord(codeGen, "InvalidFileIndex", {static_cast<double>(index)}) {}

InvalidFileAttribute::InvalidFileAttribute(const std::string& name)
    : MessageRecord(codeGen, "InvalidFileAttribute", {name}) {}

DuplicateFileEntry::DuplicateFileEntry(const std::string& name, const std::string& registeredName)
    : MessageRecord(codeGen, "DuplicateFileEntry", {name, registeredName}) {}

void raise(const orbel::MessageRecord& record) {
  orbel::throwDiagnostic(orbel::createDiagnostic(record, ""), nullptr);
}

std::string renderWarning(const orbel::MessageRecord& record) {
  orbel::DiagnosticPtr diagnostic = orbel::createDiagnostic(record, "");
  const orbel::HostText rendered = orbel::renderDiagnostic(*diagnostic, false, "-->");
  std::string text(rendered.get());
  orbel::discardDiagnostic(std::move(diagnostic));
  return text;
}

}  // namespace Varn
