#include "host/diagnostics/Diagnostics.hpp"

#include <utility>

#include <orbel/MessageCatalogue.hpp>

namespace Varn {
namespace {

struct Text {
  const char* identifier;
  const char* words;
};

constexpr const char* codeGen = "Pyx:codeGen";

// The default texts; the host can replace them.
constexpr Text texts[] = {
    {"CustomContentPreviousAssociation",
     "The custom section \"{1}\" cannot be attached to the built-in section \"{2}\": it is already "
     "attached to \"{3}\". The section of forward declarations shows as \"\"."},
    {"CustomContentSectionDoesNotExist",
     "The file \"{1}\" has no custom section \"{2}\". Declare the section before adding content to "
     "it."},
    {"CustomContentSectionAlreadyRetrieved",
     "The content of the custom section \"{1}\" cannot be given to \"{2}\": the content of \"{3}\" "
     "was retrieved before, and it can be placed only once."},
    {"CustomContentInvalidBuiltin",
     "The custom section \"{1}\" cannot be attached to \"{2}\": there is no built-in section of "
     "that name."},
    {"InvalidFileIndex",
     "The repository has no file with the index {1}. A file's index is its position in the file "
     "list, counted from 0."},
    {"InvalidFileAttribute",
     "\"{1}\" is not the name of a file attribute or section that can be used here."},
    {"DuplicateFileEntry",
     "The file name \"{1}\" was already given as \"{2}\". Names that differ only in letter case "
     "are one file on some file systems."},
};

bool addTexts() {
  for (const Text& text : texts) orbel::addMessage(codeGen, text.identifier, text.words);
  return true;
}

orbel::DiagnosticPtr createDiagnostic(const orbel::MessageRecord& record) {
  // With the first message, since a library that reports nothing needs no words.
  static const bool isAdded = addTexts();
  static_cast<void>(isAdded);
  return orbel::createDiagnostic(record, "");
}

}  // namespace

// Nothing here refers to them: without the attribute the linker would drop them.
[[gnu::used]] const char bundleErrorId[] = "Orbel:MultipleErrors";
[[gnu::used]] const char16_t bundleErrorId16[] = u"Orbel:MultipleErrors";

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
  orbel::throwDiagnostic(createDiagnostic(record), nullptr);
}

std::string renderWarning(const orbel::MessageRecord& record) {
  orbel::DiagnosticPtr diagnostic = createDiagnostic(record);
  const orbel::HostText rendered = orbel::renderDiagnostic(*diagnostic, false, "-->");
  std::string text(rendered.get());
  orbel::discardDiagnostic(std::move(diagnostic));
  return text;
}

}  // namespace Varn
