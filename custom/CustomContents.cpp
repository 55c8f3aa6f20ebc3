#include "varn/CustomContents.hpp"

#include <boost/make_shared.hpp>

#include "host/diagnostics/Diagnostics.hpp"

namespace Varn {

CustomContents::CustomContents(const std::string& fileName) : fileName_(fileName) {}

CustomContents::CustomContents(const CustomContents&) = default;

CustomContents& CustomContents::operator=(const CustomContents& source) {
  if (this == &source) return *this;
  CustomContents copy(source);
  sectionsByBuiltin_.swap(copy.sectionsByBuiltin_);
  sectionsByName_.swap(copy.sectionsByName_);
  tokensInUse_.swap(copy.tokensInUse_);
  fileName_.swap(copy.fileName_);
  return *this;
}

CustomContents::~CustomContents() = default;

void CustomContents::addCustomSection(const std::string& name, VarnFileSectionKind builtin) {
  const auto found = sectionsByName_.find(name);
  if (found != sectionsByName_.end()) {
    const VarnFileSectionKind current = found->second->getBuiltinSection();
    if (current == builtin) return;
    raise(CustomContentPreviousAssociation(name, getOrvSectionNameFromEnum(builtin),
                                           getOrvSectionNameFromEnum(current)));
  }
  auto& sections = sectionsByBuiltin_[builtin];
  sections.push_back(boost::make_shared<CustomSection>(name, builtin));
  try {
    sectionsByName_.emplace(name, sections.back());
  } catch (...) {
    sections.pop_back();
    throw;
  }
}

void CustomContents::addContentToSection(const std::string& name, const char* text) {
  const auto found = sectionsByName_.find(name);
  if (found == sectionsByName_.end()) raise(CustomContentSectionDoesNotExist(fileName_, name));
  found->second->addContent_cstr(text);
}

void CustomContents::addContentToSection(const std::string& name, const std::string& text) {
  addContentToSection(name, text.c_str());
}

const std::string& CustomContents::getCustomSectionContent(const std::string& name,
                                                           const std::string& requester) {
  const auto found = sectionsByName_.find(name);
  if (found == sectionsByName_.end()) return emptyContent_;
  CustomSection& section = *found->second;
  if (section.isRetrieved()) raise(CustomContentSectionAlreadyRetrieved(name, requester, name));
  const std::string& content = section.getContent();
  section.setIsRetrieved();
  return content;
}

bool CustomContents::isCustomSection(const std::string& name) {
  return sectionsByName_.count(name) != 0;
}

void CustomContents::setCustomTokenInUse(const std::string& name) {
  tokensInUse_.insert(name + "_InUse");
}

void CustomContents::appendMissingTokens(FileSection& builtinSection, VarnFileSectionKind builtin) {
  const auto found = sectionsByBuiltin_.find(builtin);
  if (found == sectionsByBuiltin_.end()) return;
  // addContent() may be overridden and declare further sections: iterators into the list would be
  // invalidated.
  const std::vector<SectionPtr>& sections = found->second;
  for (std::size_t i = 0; i < sections.size(); ++i) {
    const SectionPtr section = sections[i];
    if (!section->isRequired() || sectionTokenInUse(section) || section->isRetrieved()) continue;
    builtinSection.addContent(section->getContent());
    section->setIsRetrieved();
  }
}

bool CustomContents::sectionTokenInUse(const SectionPtr& section) const {
  return !tokensInUse_.empty() && tokensInUse_.count(section->getSectionToken()) != 0;
}

}  // namespace Varn
