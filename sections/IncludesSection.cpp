#include "varn/IncludesSection.hpp"

#include <optional>
#include <string_view>

#include "sections/IncludeLines.hpp"

namespace Varn {
namespace {

// The bytes of a list's line beside its entry: two newlines, the directive, two quotes.
constexpr std::size_t lineOverhead = 13;

std::size_t longestLines(const std::vector<std::string>& entries) {
  std::size_t length = 0;
  for (const std::string& entry : entries) length += entry.size() + lineOverhead;
  return length;
}

void appendUnlessPresent(std::string& text, const IncludeForm& form,
                         const std::optional<IncludeLines>& added) {
  if (!added || !added->contains(form)) form.appendLineTo(text);
}

}  // namespace

IncludesSection::IncludesSection() = default;

IncludesSection::IncludesSection(const IncludesSection& source) = default;

IncludesSection::~IncludesSection() = default;

std::string IncludesSection::getFullyQualifiedKoboTypeName() const {
  return "Varn.IncludesSection";
}

void IncludesSection::addInclude(const std::string& name, bool isSystemInclude) {
  const auto [position, isNew] = addedNames_.insert(name);
  if (!isNew) return;
  try {
    std::string line = isSystemInclude ? "#include <" : "#include \"";
    line += name;
    line += isSystemInclude ? ">\n" : "\"\n";
    FileSection::addContent(line);
  } catch (...) {
    addedNames_.erase(position);
    throw;
  }
}

void IncludesSection::addRequiredInclude(const std::string& name) { requiredIncludes_.add(name); }

void IncludesSection::addUtilityInclude(const std::string& name) { utilityIncludes_.add(name); }

void IncludesSection::setRequiredIncludes(const std::vector<std::string>& names) {
  requiredIncludes_.assign(names);
}

void IncludesSection::setUtilityIncludes(const std::vector<std::string>& names) {
  utilityIncludes_.assign(names);
}

const std::vector<std::string>& IncludesSection::getRequiredIncludes() const {
  return requiredIncludes_.list();
}

const std::vector<std::string>& IncludesSection::getUtilityIncludes() const {
  return utilityIncludes_.list();
}

const std::string& IncludesSection::getContent() const {
  const std::string_view base = getContentInPlace();
  const std::vector<std::string>& required = getRequiredIncludes();
  const std::vector<std::string>& utility = getUtilityIncludes();

  std::optional<IncludeLines> added;
  if (!base.empty() && !(required.empty() && utility.empty())) added.emplace(base);

  composedContent_.clear();
  composedContent_.reserve(base.size() + longestLines(required) + longestLines(utility));
  for (const std::string& entry : required) {
    if (!entry.empty()) appendUnlessPresent(composedContent_, IncludeForm(entry), added);
  }
  for (const std::string& entry : utility) {
    const IncludeForm form(entry);
    if (form.isSystem) appendUnlessPresent(composedContent_, form, added);
  }
  composedContent_ += base;
  for (const std::string& entry : utility) {
    const IncludeForm form(entry);
    if (!entry.empty() && !form.isSystem) appendUnlessPresent(composedContent_, form, added);
  }
  return composedContent_;
}

void IncludesSection::writeToFile(FILE* stream) const {
  const std::string& text = getContent();
  if (!text.empty()) static_cast<void>(std::fwrite(text.data(), text.size(), 1, stream));
}

FileSection* IncludesSection::clone() const { return new IncludesSection(*this); }

}  // namespace Varn
