#include "python/orv/native/printing/Printer.hpp"

#include <stdexcept>
#include <utility>

#include <varn/FunctionsSection.hpp>

#include "python/orv/native/SectionNames.hpp"

namespace orv {
namespace {

// Above this size the memory of a closed body is given back.
constexpr std::size_t largestKept = std::size_t{1} << 20;

bool goesToFile(const Body& body) {
  return body.kind == Body::Kind::section || body.kind == Body::Kind::function;
}

}  // namespace

Printer::Printer(std::shared_ptr<PackagedFiles> files) : files_(std::move(files)) {
  openOutside(-1);
}

Body& Printer::open(Body::Kind kind) {
  const int current = depth_ == 0 ? -1 : top().current;
  if (depth_ == bodies_.size()) bodies_.emplace_back();
  Body& body = bodies_[depth_++];
  body.kind = kind;
  body.current = current;
  body.text.clear();
  body.placements.clear();
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

void Printer::openFunction(int file, std::string name) {
  const Varn::VarnFileSectionKind kind = requireSection(*files_, file, Varn::FUNCTIONS_SECTION);
  Body& body = open(Body::Kind::function);
  body.file = file;
  body.section = kind;
  body.name = std::move(name);
}

void Printer::openFill(int file, std::string name) {
  static_cast<void>(files_->file(file));
  Body& body = open(Body::Kind::fill);
  body.file = file;
  body.name = std::move(name);
}

void Printer::openCapture() { open(Body::Kind::capture); }

void Printer::place(std::size_t number) {
  Body& body = top();
  if (!goesToFile(body)) throw std::logic_error("a custom section is placed outside of a section");
  body.placements.push_back({body.text.size(), number});
}

Body& Printer::close() {
  if (depth_ <= 1) throw std::logic_error("no body is open");
  Body& body = bodies_[--depth_];
  if (!goesToFile(body)) return body;
  commit(body);
  if (body.text.capacity() > largestKept) std::string().swap(body.text);
  return body;
}

void Printer::commit(Body& body) {
  // No text, no fragment: it would make an empty file one that is written.
  if (body.text.empty() && body.placements.empty()) return;
  if (body.placements.empty() && !isWaitingFor(body.file, body.section)) {
    add(body);
    return;
  }
  const auto file = static_cast<std::size_t>(body.file);
  if (file >= waitingSections_.size()) waitingSections_.resize(file + 1);
  waiting_.push_back(std::move(body));
  waitingSections_[file] |= 1U << waiting_.back().section;
}

void Printer::add(const Body& body) {
  Varn::FileSection& section = files_->file(body.file).getFileSection(body.section);
  if (body.kind == Body::Kind::function) {
    dynamic_cast<Varn::FunctionsSection&>(section).addFunction(body.name, body.text);
  } else {
    section.addContent_cstr(body.text.c_str());
  }
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
    std::size_t end = 0;
    for (const Body::Placement& placement : kept.placements) {
      whole.text.append(kept.text, end, placement.offset - end);
      whole.text += placer(placement.number, kept);
      end = placement.offset;
    }
    whole.text.append(kept.text, end);
    if (!whole.text.empty()) add(whole);
  }
}

}  // namespace orv
