#include "python/orv/native/printing/Printer.hpp"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

#include <varn/FunctionsSection.hpp>

#include "python/orv/native/SectionAccess.hpp"
#include "python/orv/native/SectionNames.hpp"

namespace orv {
namespace {

// The buffer of a closed body is freed above this size.
constexpr std::size_t largestKept = std::size_t{1} << 20;

// Appends the body's text to `to` with every custom section in its place. `trace` may be null.
void appendWithPlacements(const Body& body, const Printer::Placer& placer, const Trace* trace,
                          Body& to) {
  std::string& whole = to.text;
  RangeReader ranges(body.traced.ranges);
  Indentation following;
  std::size_t end = 0;
  const auto traceSince = [&](std::size_t before, std::string_view text, RangeReader& reader) {
    if (trace == nullptr) return;
    reader.copyIndented(text, std::string_view(whole).substr(before), to.traced.ranges);
  };
  const auto appendUpTo = [&](std::size_t offset) {
    const std::string_view text = std::string_view(body.text).substr(end, offset - end);
    const std::size_t before = whole.size();
    if (endsLine(whole)) whole += indentationOfLine(following, text);
    whole += text;
    end = offset;
    traceSince(before, text, ranges);
  };
  for (const Body::Placement& placement : body.placements) {
    appendUpTo(placement.offset);
    const std::string text = placer(placement.number, body);
    const std::size_t before = whole.size();
    appendIndented(whole, text, placement.indentation, endsLine(whole));
    if (trace != nullptr) {
      RangeReader placed(trace->retrieved());
      traceSince(before, text, placed);
      to.traced.spans.push_back(
          {Span::Kind::custom, trace->retrievedName(), before, whole.size() - before});
    }
    following = placement.following;
  }
  appendUpTo(body.text.size());
}

bool goesToFile(Body::Kind kind) {
  return kind == Body::Kind::section || kind == Body::Kind::function;
}

bool goesBelow(Body::Kind kind) { return kind == Body::Kind::indent || kind == Body::Kind::user; }

}  // namespace

Printer::Printer(std::shared_ptr<PackagedFiles> files, RepeatListener repeated)
    : files_(std::move(files)), repeated_(std::move(repeated)) {
  openOutside(-1);
}

void Printer::count(std::size_t bytes) {
  if (bytes > left_) {
    throw std::length_error("the templates print more text than --max-text allows");
  }
  left_ -= bytes;
}

Body& Printer::open(Body::Kind kind) {
  const int current = depth_ == 0 ? -1 : top().current;
  if (depth_ == bodies_.size()) bodies_.emplace_back();
  Body& body = bodies_[depth_++];
  body.kind = kind;
  body.current = current;
  body.text.clear();
  body.placements.clear();
  body.traced.ranges.clear();
  return body;
}

void Printer::openOutside(int current) {
  if (current != -1) static_cast<void>(files_->file(current));
  open(Body::Kind::outside).current = current;
}

void Printer::openFile(int file) {
  if (files_->isText(file)) {
    openSection(file, textSection);
    top().current = file;
  } else {
    openOutside(file);
  }
}

void Printer::openSection(int file, int section) {
  const Varn::VarnFileSectionKind kind = requireSection(*files_, file, section);
  Body& body = open(Body::Kind::section);
  body.file = file;
  body.section = kind;
}

void Printer::openFunction(int file, std::string_view name, std::size_t tag) {
  const Varn::VarnFileSectionKind kind = requireSection(*files_, file, Varn::FUNCTIONS_SECTION);
  Body& body = open(Body::Kind::function);
  body.file = file;
  body.section = kind;
  body.name = name;
  body.tag = tag;
  const auto position = static_cast<std::size_t>(file);
  if (position < functions_.size() && functions_[position]) functions_[position]->prefetch(name);
}

void Printer::openFill(int file, std::string_view name) {
  static_cast<void>(files_->file(file));
  Body& body = open(Body::Kind::fill);
  body.file = file;
  body.name = name;
}

void Printer::openCapture() { open(Body::Kind::capture); }

void Printer::openIndent(Indentation indentation) {
  if (top().kind == Body::Kind::outside) {
    openOutside(top().current);
  } else {
    open(Body::Kind::indent).indentation = std::move(indentation);
  }
}

void Printer::openUser(std::string_view beginning, std::string ending, std::uint32_t site) {
  if (isInUser()) throw std::logic_error("a user region is opened inside of another");
  const Origin origin{site, files_->trace ? files_->trace->links().current() : 0};
  appendMarker(beginning, origin);
  Body& body = open(Body::Kind::user);
  body.name = std::move(ending);
  body.indentation = {};
  body.markers = origin;
}

const Body& Printer::destination() const {
  std::size_t position = depth_ - 1;
  while (goesBelow(bodies_[position].kind)) --position;
  return bodies_[position];
}

bool Printer::isInUser() const {
  std::size_t position = depth_ - 1;
  while (bodies_[position].kind == Body::Kind::indent) --position;
  return bodies_[position].kind == Body::Kind::user;
}

void Printer::place(std::size_t number, Indentation indentation) {
  if (!goesToFile(destination().kind)) {
    throw std::logic_error("a custom section is placed outside of a section");
  }
  Body& body = top();
  body.placements.push_back({body.text.size(), number, std::move(indentation), {}});
}

Body& Printer::close() {
  if (depth_ <= 1) throw std::logic_error("no body is open");
  Body& body = bodies_[--depth_];
  if (goesBelow(body.kind)) {
    indent(body);
    if (body.kind == Body::Kind::user) {
      appendMarker(body.name, body.markers);
    }
  } else if (goesToFile(body.kind)) {
    commit(body);
  } else {
    return body;
  }
  if (body.text.capacity() > largestKept) {
    std::string().swap(body.text);
    body.traced = {};
  }
  return body;
}

// Whether text for the top body begins a line. An indent that is empty begins where it was opened.
bool Printer::beginsLine() const {
  std::size_t position = depth_ - 1;
  while (bodies_[position].kind == Body::Kind::indent && bodies_[position].text.empty()) --position;
  return endsLine(bodies_[position].text);
}

// What is placed at the end may end a line or not: then no newline is put before the marker.
void Printer::appendMarker(std::string_view line, Origin origin) {
  Body& body = top();
  const std::size_t before = body.text.size();
  const bool endsInPlacement = !body.placements.empty() && body.placements.back().offset == before;
  if (!endsInPlacement && !beginsLine()) append("\n");
  append(line);
  append("\n");
  if (files_->trace) body.traced.ranges.append(body.text.size() - before, origin);
}

void Printer::indent(const Body& body) {
  Body& below = top();
  const std::string_view text = body.text;
  RangeReader ranges(body.traced.ranges);
  std::size_t end = 0;
  for (const Body::Placement& placement : body.placements) {
    appendIndented(text.substr(end, placement.offset - end), body.indentation, ranges);
    below.placements.push_back({below.text.size(), placement.number,
                                body.indentation + placement.indentation, placement.following});
    end = placement.offset;
  }
  appendIndented(text.substr(end), body.indentation, ranges);
}

void Printer::appendIndented(std::string_view text, const Indentation& indentation,
                             RangeReader& ranges) {
  if (text.empty()) return;
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  count(text.size() + lines * indentation.lines.size());
  Body& body = top();
  const std::size_t before = body.text.size();
  if (body.placements.empty() || body.placements.back().offset != before) {
    orv::appendIndented(body.text, text, indentation, beginsLine());
  } else {
    Indentation& following = body.placements.back().following;
    following = indentation + following;
    orv::appendIndented(body.text, text, indentation, false);
  }
  if (!files_->trace) return;
  ranges.copyIndented(text, std::string_view(body.text).substr(before), body.traced.ranges);
}

void Printer::commit(Body& body) {
  // No text, no fragment: it would make an empty file one that is written.
  if (body.text.empty() && body.placements.empty()) return;
  if (body.kind == Body::Kind::function) noteFunction(body);
  if (body.placements.empty() && !isWaitingFor(body.file, body.section)) {
    add(body);
    return;
  }
  const auto file = static_cast<std::size_t>(body.file);
  if (file >= waitingSections_.size()) waitingSections_.resize(file + 1);
  waiting_.push_back(std::move(body));
  waitingSections_[file] |= 1U << waiting_.back().section;
}

void Printer::noteFunction(const Body& body) {
  const auto file = static_cast<std::size_t>(body.file);
  if (file >= functions_.size()) functions_.resize(file + 1);
  auto& names = functions_[file];
  if (!names) names = std::make_unique<FunctionNames>();
  const std::optional<std::size_t> first = names->add(body.name, body.tag);
  if (first) repeated_(body, *first);
}

void Printer::add(Body& body) {
  if (files_->trace) {
    if (body.kind == Body::Kind::function) {
      const Span whole{Span::Kind::function, body.name, 0, body.text.size()};
      files_->trace->add(body.file, body.section, {Ranges(), {whole}});
    }
    files_->trace->add(body.file, body.section, body.traced);
  }
  if (body.kind == Body::Kind::section) {
    addSectionText(*files_, body.file, body.section, body.text);
    return;
  }
  // The bridge has no operation for functions. Every file's section of this kind is of this class.
  Varn::FileSection& section = files_->file(body.file).getFileSection(body.section);
  static_cast<Varn::FunctionsSection&>(section).addFunction(body.name, body.text);
}

bool Printer::isWaiting(int file, int section) const {
  const auto kind = findSection(*files_, file, section);
  return kind && isWaitingFor(file, *kind);
}

bool Printer::isWaitingFor(int file, Varn::VarnFileSectionKind kind) const {
  const auto position = static_cast<std::size_t>(file);
  return position < waitingSections_.size() && (waitingSections_[position] >> kind & 1U) != 0;
}

void Printer::finish(const Placer& placer) {
  waitingSections_.clear();
  const std::vector<Body> waiting = std::exchange(waiting_, {});
  for (const Body& kept : waiting) {
    Body whole;
    whole.kind = kept.kind;
    whole.file = kept.file;
    whole.section = kept.section;
    whole.name = kept.name;
    appendWithPlacements(kept, placer, files_->trace.get(), whole);
    if (!whole.text.empty()) add(whole);
  }
}

}  // namespace orv
