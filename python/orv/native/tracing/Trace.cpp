#include "python/orv/native/tracing/Trace.hpp"

#include "python/orv/native/PackagedFiles.hpp"
#include "python/orv/native/SectionNames.hpp"

namespace orv {
namespace {

constexpr std::string_view directive = "#include ";

// An entry of an includes section's list as in its line.
std::string headerOf(const std::string& entry) {
  return entry[0] == '<' ? entry : '"' + entry + '"';
}

}  // namespace

void TracedText::append(const TracedText& other) {
  for (const Span& span : other.spans) {
    spans.push_back({span.kind, span.name, ranges.size() + span.begin, span.size});
  }
  ranges.append(other.ranges);
}

TracedText TracedText::withoutFirst() const {
  TracedText rest;
  RangeReader reader(ranges);
  static_cast<void>(reader.take(1));
  reader.copy(ranges.size() - 1, rest.ranges);
  for (Span span : spans) {
    if (span.begin == 0) --span.size;
    if (span.begin != 0) --span.begin;
    rest.spans.push_back(std::move(span));
  }
  return rest;
}

Trace::Trace() : retrieved_(customSections_.end()) {
  for (std::size_t kind = 0; kind <= static_cast<std::size_t>(Kind::formatter); ++kind) {
    sites_.push_back({static_cast<Kind>(kind), 0, 0});
  }
  links_.nameLoops(links_.addLabel({strings_.number("for"), 0}));
}

std::uint32_t Trace::addSite(Site site) {
  sites_.push_back(site);
  return static_cast<std::uint32_t>(sites_.size() - 1);
}

void Trace::leaveTo(std::size_t depth) {
  if (depth < links_.depth()) times_.returned(sites_[links_.siteAt(depth)].file);
  links_.leaveTo(depth);
}

void Trace::declare(int file, Varn::VarnFileSectionKind section, const std::string& name) {
  const auto custom = customSections_.try_emplace({file, name}).first;
  std::vector<CustomSections::iterator>& known = declared_[{file, section}];
  for (const auto& other : known) {
    if (other == custom) return;
  }
  known.push_back(custom);
}

void Trace::retrieve(int file, const std::string& name) {
  retrieved_ = customSections_.try_emplace({file, name}).first;
  retrieved_->second.isPlaced = true;
}

void Trace::appendMissing(int file, Varn::VarnFileSectionKind section) {
  const auto declared = declared_.find({file, section});
  if (declared == declared_.end() || section == Varn::DOCUMENTATION_SECTION) return;
  for (const auto& entry : declared->second) {
    CustomSection& custom = entry->second;
    if (custom.isPlaced || custom.isInUse) continue;
    custom.isPlaced = true;
    const std::size_t size = custom.ranges.size();
    if (size == 0) continue;
    const Span span{Span::Kind::custom, entry->first.second, 0, size};
    add(file, section, {custom.ranges, {span}});
  }
}

void Trace::ask(int file, const std::string& header, std::uint32_t site) {
  asked_.try_emplace({file, header}, Origin{site, links_.current()});
}

void Trace::addInclude(int file, const Varn::IncludesSection& section, const std::string& name,
                       bool isSystem) {
  const std::string header = isSystem ? '<' + name + '>' : '"' + name + '"';
  sections_[{file, Varn::INCLUDES_SECTION}].ranges.append(newInclude(section, name),
                                                          asked(file, header));
}

std::size_t Trace::newInclude(const Varn::IncludesSection& section, const std::string& name) {
  constexpr std::size_t quotesAndNewline = 3;
  const bool isNew = added_[&section].insert(name).second;
  return isNew ? directive.size() + name.size() + quotesAndNewline : 0;
}

Origin Trace::asked(int file, const std::string& header) const {
  const auto found = asked_.find({file, header});
  return found == asked_.end() ? script_ : found->second;
}

void Trace::adopt(PackagedFiles& files, std::uint32_t site, const Added& added) {
  script_ = {site, 0};
  const auto count = static_cast<int>(files.repository.getFileList().size());
  for (int file = 0; file < count; ++file) {
    for (int i = 0; i < textSection; ++i) {
      const auto kind = static_cast<Varn::VarnFileSectionKind>(i);
      if (!files.file(file).hasSection(kind)) continue;
      const Varn::FileSection& section = files.file(file).getFileSection(kind);
      // Without the lists of an includes section.
      const std::size_t size = section.Varn::FileSection::getContent().size();
      if (size == 0) continue;
      TracedText& text = sections_[{file, kind}];
      const auto known = added.find(&section);
      if (known != added.end() && text.ranges.size() + known->second.size() == size) {
        text.ranges.append(known->second);
      }
      settle(text, size);
    }
  }
}

// What is missing was added last; text that is shorter than its records was replaced.
void Trace::settle(TracedText& text, std::size_t size) const {
  if (text.ranges.size() > size) text = {};
  text.ranges.append(size - text.ranges.size(), script_);
}

TracedText Trace::sectionText(int file, Varn::VarnFileSectionKind section, std::size_t size) const {
  const auto found = sections_.find({file, section});
  TracedText text;
  if (found != sections_.end()) text = found->second;
  settle(text, size);
  return text;
}

TracedText Trace::includesText(int file, const Varn::IncludesSection& section) const {
  const std::string& base = section.Varn::FileSection::getContent();
  TracedText text;
  const auto addLine = [&](const std::string& entry) {
    if (entry.empty()) return;
    const std::string header = headerOf(entry);
    const std::string line = '\n' + std::string(directive) + header + '\n';
    if (base.find(line) == base.npos) text.ranges.append(line.size(), asked(file, header));
  };
  for (const std::string& entry : section.getRequiredIncludes()) addLine(entry);
  for (const std::string& entry : section.getUtilityIncludes()) {
    if (!entry.empty() && entry[0] == '<') addLine(entry);
  }
  text.append(sectionText(file, Varn::INCLUDES_SECTION, base.size()));
  for (const std::string& entry : section.getUtilityIncludes()) {
    if (!entry.empty() && entry[0] != '<') addLine(entry);
  }
  return text;
}

}  // namespace orv
