#include "sections/IncludeLines.hpp"

#include <algorithm>
#include <functional>

namespace Varn {
namespace {

constexpr std::string_view directive = "#include ";

}  // namespace

void IncludeForm::appendLineTo(std::string& text) const {
  text += '\n';
  text += directive;
  if (!isSystem) text += '"';
  text += entry;
  if (!isSystem) text += '"';
  text += '\n';
}

IncludeLines::IncludeLines(std::string_view text) : text_(text) {
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  std::size_t size = 2;
  while (size < 2 * lines) size *= 2;
  slots_.resize(size);
  // The first line has no newline before it, and what follows the last newline none after it.
  std::size_t start = text.find('\n');
  while (start != std::string_view::npos) {
    ++start;
    const std::size_t end = text.find('\n', start);
    if (end == std::string_view::npos) break;
    std::string_view line = text.substr(start, end - start);
    start = end;
    if (line.substr(0, directive.size()) != directive) continue;
    line.remove_prefix(directive.size());
    if (line.empty()) continue;
    if (line.front() == '<') {
      insert(line, true);
    } else if (line.size() >= 2 && line.front() == '"' && line.back() == '"') {
      insert(line.substr(1, line.size() - 2), false);
    }
  }
}

bool IncludeLines::contains(const IncludeForm& form) const {
  if (form.entry.find('\n') == std::string_view::npos) {
    return slots_[slotOf(form.entry, form.isSystem)].isTaken;
  }
  std::string lines;
  form.appendLineTo(lines);
  return text_.find(lines) != std::string_view::npos;
}

void IncludeLines::insert(std::string_view entry, bool isSystem) {
  slots_[slotOf(entry, isSystem)] = {entry, isSystem, true};
}

std::size_t IncludeLines::slotOf(std::string_view entry, bool isSystem) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t position = std::hash<std::string_view>()(entry) & mask;
  while (slots_[position].isTaken &&
         (slots_[position].entry != entry || slots_[position].isSystem != isSystem)) {
    position = (position + 1) & mask;
  }
  return position;
}

}  // namespace Varn
