#include "python/orv/native/output/LineDirectives.hpp"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace orv {
namespace {

constexpr std::string_view directive = "#line ";

// Where a text of C is at the beginning of a line.
class CScanner {
 public:
  // Whether a directive may precede the next line.
  bool allowsDirective() const {
    return state_ == State::code && parentheses_ == 0 && !isContinued_;
  }

  // `line` ends with its newline, if it has one.
  void scan(std::string_view line) {
    if (state_ == State::code && !isContinued_) {
      const std::size_t first = line.find_first_not_of(" \t");
      isDirective_ = first != line.npos && line[first] == '#';
      if (isDirective_) enterDirective(line.substr(first + 1));
    }
    for (std::size_t i = 0; i < line.size(); ++i) i += step(line.substr(i));
    std::size_t end = line.size();
    while (end != 0 && (line[end - 1] == '\n' || line[end - 1] == '\r')) --end;
    isContinued_ = end != 0 && line[end - 1] == '\\';
    if (isContinued_) return;
    // None of these goes on in the next line.
    if (state_ != State::comment) state_ = State::code;
    if (isDirective_ && state_ == State::code) {
      parentheses_ = parenthesesOutside_;
      isDirective_ = false;
    }
  }

 private:
  enum class State { code, comment, lineComment, text, character };

  // Branches of a condition begin with as many open parentheses.
  void enterDirective(std::string_view line) {
    const std::size_t begin = line.find_first_not_of(" \t");
    const std::string_view word = begin == line.npos ? "" : line.substr(begin);
    const auto is = [&](std::string_view name) { return word.substr(0, name.size()) == name; };
    if (is("if")) {
      conditions_.push_back(parentheses_);
    } else if (!conditions_.empty() && (is("else") || is("elif"))) {
      parentheses_ = conditions_.back();
    } else if (!conditions_.empty() && is("endif")) {
      conditions_.pop_back();
    }
    parenthesesOutside_ = parentheses_;
  }

  // Takes a character, and returns how many more belong to it.
  std::size_t step(std::string_view rest) {
    const char c = rest[0];
    const char next = rest.size() > 1 ? rest[1] : '\0';
    switch (state_) {
      case State::code:
        return stepInCode(c, next);
      case State::comment:
        if (c != '*' || next != '/') return 0;
        state_ = State::code;
        return 1;
      case State::lineComment:
        return 0;
      case State::text:
      case State::character:
        if (c == '\\') return next == '\n' ? 0 : 1;
        if (c == (state_ == State::text ? '"' : '\'')) state_ = State::code;
        return 0;
    }
    return 0;
  }

  std::size_t stepInCode(char c, char next) {
    if (c == '/' && (next == '*' || next == '/')) {
      state_ = next == '*' ? State::comment : State::lineComment;
      return 1;
    }
    if (c == '"') state_ = State::text;
    if (c == '\'') state_ = State::character;
    if (c == '(') ++parentheses_;
    if (c == ')' && parentheses_ != 0) --parentheses_;
    return 0;
  }

  State state_ = State::code;
  bool isContinued_ = false;
  bool isDirective_ = false;
  std::size_t parentheses_ = 0;
  // Those around a directive, which has its own.
  std::size_t parenthesesOutside_ = 0;
  std::vector<std::size_t> conditions_;
};

// A line of a template, or of the file itself when it has no template.
struct SourceLine {
  std::optional<std::uint32_t> file;
  std::size_t line;
};

// A directive: where it is put, and the size of all up to it and with it.
struct Insertion {
  std::size_t offset;
  std::size_t added;
};

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == text.npos; }

std::string quoted(const std::string& name) {
  std::string text = "\"";
  for (const char c : name) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  return text + '"';
}

class DirectiveWriter {
 public:
  DirectiveWriter(const ComposedFile& file, const Trace& trace, const DirectiveNames& names,
                  const std::string& own)
      : file_(file), trace_(trace), names_(names), own_(own), reader_(file.traced().ranges) {}

  ComposedFile write() {
    const std::string_view text = file_.bytes();
    std::size_t done = 0;
    while (done != text.size()) {
      const std::size_t newline = text.find('\n', done);
      const std::size_t end = newline == text.npos ? text.size() : newline + 1;
      writeLine(text.substr(done, end - done), done);
      done = end;
    }
    return finish();
  }

 private:
  void writeLine(std::string_view line, std::size_t offset) {
    Ranges ranges;
    const std::optional<SourceLine> source = sourceOf(line, ranges);
    if (source && scanner_.allowsDirective() && !isExpected(*source)) name(*source, offset);
    scanner_.scan(line);
    text_ += line;
    traced_.ranges.append(ranges);
    ++outputLine_;
    if (expected_) ++expected_->line;
  }

  // Where a line comes from, by the first of its pieces that is more than white space.
  std::optional<SourceLine> sourceOf(std::string_view line, Ranges& ranges) {
    std::optional<SourceLine> found;
    bool isDecided = false;
    for (std::size_t done = 0; done != line.size();) {
      if (reader_.isAtBeginning()) linesOfRange_ = 0;
      const RangeReader::Range range = reader_.take(line.size() - done);
      const std::string_view piece = line.substr(done, range.size);
      if (!isDecided && !isBlank(piece)) {
        found = sourceOf(trace_.sites()[range.origin.site]);
        isDecided = true;
      }
      ranges.append(range.size, range.origin);
      done += range.size;
      if (piece.back() == '\n') ++linesOfRange_;
    }
    return found;
  }

  std::optional<SourceLine> sourceOf(const Trace::Site& site) {
    if (site.kind == Trace::Kind::marker) isInRegion_ = !isInRegion_;
    if (isInRegion_) return SourceLine{std::nullopt, 0};
    switch (site.kind) {
      case Trace::Kind::text:
        return SourceLine{site.file, site.line + linesOfRange_};
      case Trace::Kind::value:
      case Trace::Kind::include:
        return SourceLine{site.file, site.line};
      case Trace::Kind::script:
      case Trace::Kind::marker:
      case Trace::Kind::unknown:
        return SourceLine{std::nullopt, 0};
      default:
        return std::nullopt;
    }
  }

  bool isExpected(const SourceLine& source) const {
    if (!source.file) return expected_ && !expected_->file;
    return expected_ && expected_->file == source.file && expected_->line == source.line;
  }

  void name(const SourceLine& source, std::size_t offset) {
    ++outputLine_;
    expected_ = source;
    if (!source.file) expected_->line = outputLine_;
    const std::string& name = source.file ? nameOf(*source.file) : own_;
    const std::string line =
        std::string(directive) + std::to_string(expected_->line) + ' ' + quoted(name) + '\n';
    const std::size_t before = insertions_.empty() ? 0 : insertions_.back().added;
    insertions_.push_back({offset, before + line.size()});
    traced_.ranges.append(line.size(), Trace::ownOrigin(Trace::Kind::directive));
    text_ += line;
  }

  const std::string& nameOf(std::uint32_t file) {
    std::string& known = known_[file];
    if (known.empty()) known = names_(*trace_.strings().all()[file]);
    return known;
  }

  // Where what was at an offset is now, behind the directives that are in front of it.
  std::size_t moved(std::size_t offset) const {
    const auto next = std::lower_bound(
        insertions_.begin(), insertions_.end(), offset,
        [](const Insertion& insertion, std::size_t wanted) { return insertion.offset < wanted; });
    return next == insertions_.begin() ? offset : offset + (next - 1)->added;
  }

  ComposedFile finish() {
    std::vector<ComposedFile::Section> sections = file_.sections();
    std::size_t section = 0;
    for (Span span : file_.traced().spans) {
      const std::size_t end = moved(span.begin + span.size);
      span.begin = moved(span.begin);
      span.size = end - span.begin;
      if (span.kind == Span::Kind::section) sections[section++].size = span.size;
      traced_.spans.push_back(std::move(span));
    }
    auto* characters = static_cast<char*>(std::malloc(text_.size() + 1));
    if (characters == nullptr) throw std::bad_alloc();
    std::memcpy(characters, text_.data(), text_.size());
    return {characters, text_.size(), std::move(sections), file_.guard(), std::move(traced_)};
  }

  const ComposedFile& file_;
  const Trace& trace_;
  const DirectiveNames& names_;
  const std::string& own_;
  RangeReader reader_;
  CScanner scanner_;
  // Of the lines of the current range those that are done.
  std::size_t linesOfRange_ = 0;
  bool isInRegion_ = false;
  // The next line of the output, and what it counts as.
  std::size_t outputLine_ = 1;
  std::optional<SourceLine> expected_;
  std::string text_;
  TracedText traced_;
  std::vector<Insertion> insertions_;
  std::map<std::uint32_t, std::string> known_;
};

}  // namespace

ComposedFile withLineDirectives(const ComposedFile& file, const Trace& trace,
                                const DirectiveNames& names, const std::string& own) {
  return DirectiveWriter(file, trace, names, own).write();
}

std::string renumbered(std::string_view text, const std::vector<Region>& regions,
                       const std::string& own) {
  const std::string ending = ' ' + quoted(own);
  std::string result;
  auto region = regions.begin();
  std::size_t number = 1;
  for (std::size_t done = 0; done != text.size(); ++number) {
    const std::size_t newline = text.find('\n', done);
    const std::size_t end = newline == text.npos ? text.size() : newline + 1;
    const std::string_view line = text.substr(done, end - done);
    while (region != regions.end() && region->end <= done) ++region;
    const bool isInRegion = region != regions.end() && region->begin <= done;
    const std::size_t name = line.rfind(ending);
    const bool isOwn = !isInRegion && line.substr(0, directive.size()) == directive &&
                       name != line.npos && isBlank(line.substr(name + ending.size()));
    if (isOwn) {
      result += std::string(directive) + std::to_string(number + 1);
      result += line.substr(name);
    } else {
      result += line;
    }
    done = end;
  }
  return result;
}

}  // namespace orv
