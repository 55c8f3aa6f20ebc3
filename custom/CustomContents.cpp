#include "varn/CustomContents.hpp"

#include <vector>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/unordered_map.hpp>
#include <boost/unordered_set.hpp>

#include "host/diagnostics/Diagnostics.hpp"

namespace Varn {

struct CustomContents::Tables {
  using SectionPtr = boost::shared_ptr<CustomSection>;

  // Both maps hold the same sections; each is once in the list of its built-in section.
  boost::unordered_map<int, std::vector<SectionPtr>> sectionsByBuiltin;
  boost::unordered_map<std::string, SectionPtr> sectionsByName;
  boost::unordered_set<std::string> tokensInUse;

  bool isInUse(CustomSection& section) const {
    return !tokensInUse.empty() && tokensInUse.count(section.getSectionToken()) != 0;
  }
};

CustomContents::CustomContents(const std::string& fileName) : fileName_(fileName) {}

CustomContents::CustomContents(const CustomContents& source)
    : fileName_(source.fileName_),
      tables_(source.tables_ ? std::make_unique<Tables>(*source.tables_) : nullptr) {}

CustomContents& CustomContents::operator=(const CustomContents& source) {
  if (this == &source) return *this;
  CustomContents copy(source);
  fileName_.swap(copy.fileName_);
  tables_.swap(copy.tables_);
  return *this;
}

CustomContents::~CustomContents() = default;

CustomContents::Tables& CustomContents::tables() {
  if (!tables_) tables_ = std::make_unique<Tables>();
  return *tables_;
}

CustomSection* CustomContents::find(const std::string& name) const {
  if (!tables_) return nullptr;
  const auto found = tables_->sectionsByName.find(name);
  return found != tables_->sectionsByName.end() ? found->second.get() : nullptr;
}

void CustomContents::addCustomSection(const std::string& name, VarnFileSectionKind builtin) {
  if (CustomSection* found = find(name)) {
    const VarnFileSectionKind current = found->getBuiltinSection();
    if (current == builtin) return;
    raise(CustomContentPreviousAssociation(name, getOrvSectionNameFromEnum(builtin),
                                           getOrvSectionNameFromEnum(current)));
  }
  auto& sections = tables().sectionsByBuiltin[builtin];
  sections.push_back(boost::make_shared<CustomSection>(name, builtin));
  try {
    tables().sectionsByName.emplace(name, sections.back());
  } catch (...) {
    sections.pop_back();
    throw;
  }
}

void CustomContents::addContentToSection(const std::string& name, const char* text) {
  CustomSection* section = find(name);
  if (section == nullptr) raise(CustomContentSectionDoesNotExist(fileName_, name));
  section->addContent_cstr(text);
}

void CustomContents::addContentToSection(const std::string& name, const std::string& text) {
  addContentToSection(name, text.c_str());
}

const std::string& CustomContents::getCustomSectionContent(const std::string& name,
                                                           const std::string& requester) {
  static const std::string empty;
  CustomSection* section = find(name);
  if (section == nullptr) return empty;
  if (section->isRetrieved()) raise(CustomContentSectionAlreadyRetrieved(name, requester, name));
  const std::string& content = section->getContent();
  section->setIsRetrieved();
  return content;
}

bool CustomContents::isCustomSection(const std::string& name) { return find(name) != nullptr; }

void CustomContents::setCustomTokenInUse(const std::string& name) {
  tables().tokensInUse.insert(name + "_InUse");
}

void CustomContents::appendMissingTokens(FileSection& builtinSection, VarnFileSectionKind builtin) {
  if (!tables_) return;
  const auto found = tables_->sectionsByBuiltin.find(builtin);
  if (found == tables_->sectionsByBuiltin.end()) return;
  // addContent() may be overridden and declare further sections: iterators into the list would be
  // invalidated.
  const std::vector<Tables::SectionPtr>& sections = found->second;
  for (std::size_t i = 0; i < sections.size(); ++i) {
    const Tables::SectionPtr section = sections[i];
    if (!section->isRequired() || section->isRetrieved() || tables_->isInUse(*section)) continue;
    builtinSection.addContent(section->getContent());
    section->setIsRetrieved();
  }
}

}  // namespace Varn
