#ifndef ORV_TRACING_TRACE_HPP
#define ORV_TRACING_TRACE_HPP

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <varn/IncludesSection.hpp>
#include <varn/VarnFileSectionKind.hpp>

#include "python/orv/native/tracing/Links.hpp"
#include "python/orv/native/tracing/Ranges.hpp"
#include "python/orv/native/tracing/Times.hpp"

namespace orv {

struct PackagedFiles;

// A part of a file or section that has a name. `begin` and `size` are in bytes.
struct Span {
  enum class Kind : std::uint8_t { section, function, custom, region };

  Kind kind;
  std::string name;
  std::size_t begin;
  std::size_t size;
};

// The origins of one text, and the parts that it has.
struct TracedText {
  Ranges ranges;
  std::vector<Span> spans;

  // Appends another text's ranges and parts.
  void append(const TracedText& other);
  // The same but for the first byte.
  TracedText withoutFirst() const;
};

// Where the text of a run comes from, beside the sections that hold it. Sections are known by file
// and kind, custom sections by file and name.
class Trace {
 public:
  // What prints: the text and the values of templates, a script, or the engine itself.
  enum class Kind : std::uint8_t {
    unknown,
    text,
    value,
    script,
    guard,
    include,
    blank,
    newline,
    linkage,
    directive,
    // What others have written into a user region; its markers, which have a line of their own.
    region,
    // A formatter; a line of a template's text after one.
    formatter,
    line,
    marker,
    // A tag or call; it prints nothing itself.
    tag,
  };

  struct Site {
    Kind kind;
    std::uint32_t file;  // in strings()
    std::uint32_t line;  // 0: no line of its own
    // How many lines of the template it has something on.
    std::uint32_t lines = 1;
  };

  Trace();

  // The number of a new site, one more than the last one's.
  std::uint32_t addSite(Site site);
  // The sites of the lines of texts, by the text's site and the lines before in it.
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t>& lineSites() {
    return lineSites_;
  }
  // The same for all that have no file.
  static Origin ownOrigin(Kind kind) { return {static_cast<std::uint32_t>(kind), 0}; }

  Links& links() { return links_; }
  const Links& links() const { return links_; }
  // Leaves all links above `depth`.
  void leaveTo(std::size_t depth);
  Times& times() { return times_; }
  // The template of the site has run until now, in a run whose templates are timed.
  void ran(std::uint32_t site) {
    if (site < sites_.size()) times_.ran(sites_[site].file);
  }
  Strings& strings() { return strings_; }
  const Strings& strings() const { return strings_; }
  const std::vector<Site>& sites() const { return sites_; }

  // Text that was added to a section.
  void add(int file, Varn::VarnFileSectionKind section, const TracedText& text) {
    sections_[{file, section}].append(text);
  }
  // Text that was added to a custom section.
  void fill(int file, const std::string& name, const Ranges& ranges) {
    customSections_[{file, name}].ranges.append(ranges);
  }
  void declare(int file, Varn::VarnFileSectionKind section, const std::string& name);
  void markInUse(int file, const std::string& name) {
    customSections_[{file, name}].isInUse = true;
  }
  // The text of a custom section was handed out: to be placed now, if it is placed at all.
  void retrieve(int file, const std::string& name);
  // The ranges and the name of the custom section that was retrieved last.
  const Ranges& retrieved() const { return retrieved_->second.ranges; }
  const std::string& retrievedName() const { return retrieved_->first.second; }
  // The custom sections of a section that are not placed were appended to it.
  void appendMissing(int file, Varn::VarnFileSectionKind section);

  // `site` is about to ask for a header, written as in its include line.
  void ask(int file, const std::string& header, std::uint32_t site);
  // The header is about to be added to the includes of the file, unless it was before.
  void addInclude(int file, const Varn::IncludesSection& section, const std::string& name,
                  bool isSystem);
  // The size of the line that adding the header to the section makes: 0 if it was added before.
  std::size_t newInclude(const Varn::IncludesSection& section, const std::string& name);

  // Everything that sections got without record comes from `site`, a script: from the origins that
  // `added` has for the section, if these are all that is missing.
  using Added = std::unordered_map<const Varn::FileSection*, Ranges>;
  void adopt(PackagedFiles& files, std::uint32_t site, const Added& added);

  // The text of a section, `size` bytes of it.
  TracedText sectionText(int file, Varn::VarnFileSectionKind section, std::size_t size) const;
  // The text of an includes section with the lines of its lists.
  TracedText includesText(int file, const Varn::IncludesSection& section) const;

 private:
  using SectionKey = std::pair<int, Varn::VarnFileSectionKind>;
  using NameKey = std::pair<int, std::string>;

  struct CustomSection {
    Ranges ranges;
    bool isInUse = false;
    bool isPlaced = false;
  };
  using CustomSections = std::map<NameKey, CustomSection>;

  Origin asked(int file, const std::string& header) const;
  void settle(TracedText& text, std::size_t size) const;

  Strings strings_;
  Links links_;
  Times times_;
  std::vector<Site> sites_;
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> lineSites_;
  std::map<SectionKey, TracedText> sections_;
  CustomSections customSections_;
  // By section, in the order in which they were declared.
  std::map<SectionKey, std::vector<CustomSections::iterator>> declared_;
  CustomSections::iterator retrieved_;
  std::map<NameKey, Origin> asked_;
  // The names of headers by section.
  std::unordered_map<const Varn::IncludesSection*, std::unordered_set<std::string>> added_;
  // Of the script that ran last.
  Origin script_;
};

}  // namespace orv

#endif
