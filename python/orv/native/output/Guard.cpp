#include "python/orv/native/output/Guard.hpp"

#include <algorithm>
#include <utility>

#include <pybind11/pybind11.h>

namespace orv {
namespace {

constexpr std::string_view placeholder = "{PATH}";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isLower(char c) { return c >= 'a' && c <= 'z'; }

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || isLower(c) || c == '_'; }

bool isIdentifier(std::string_view name) {
  const auto isPart = [](char c) { return isLetter(c) || isDigit(c); };
  return !name.empty() && isLetter(name[0]) && std::all_of(name.begin(), name.end(), isPart);
}

std::string_view withoutEnding(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  const std::size_t slash = path.rfind('/');
  const std::size_t begin = slash == std::string_view::npos ? 0 : slash + 1;
  return dot == std::string_view::npos || dot <= begin ? path : path.substr(0, dot);
}

std::string asMacro(std::string_view path) {
  std::string macro(path);
  for (char& c : macro) {
    if (isLower(c)) {
      c = static_cast<char>(c - 'a' + 'A');
    } else if (!isLetter(c) && !isDigit(c)) {
      c = '_';
    }
  }
  return macro;
}

}  // namespace

Guard Guard::ofMacro(std::string macro) {
  if (!isIdentifier(macro)) {
    throw pybind11::value_error("its DefinedMacro \"" + macro + "\" is no identifier");
  }
  Guard guard;
  guard.macro_ = std::move(macro);
  return guard;
}

Guard Guard::pragma() {
  Guard guard;
  guard.isPragma_ = true;
  return guard;
}

Guard Guard::ofForm(std::string_view form, std::string_view path) {
  if (form == "pragma") return pragma();
  const std::string replacement = asMacro(withoutEnding(path));
  std::string macro;
  while (!form.empty()) {
    const std::size_t found = std::min(form.find(placeholder), form.size());
    macro += form.substr(0, found);
    form.remove_prefix(found);
    if (form.empty()) break;
    macro += replacement;
    form.remove_prefix(placeholder.size());
  }
  if (!macro.empty() && isDigit(macro[0])) macro.insert(0, "H_");
  return ofMacro(std::move(macro));
}

std::string Guard::opening() const {
  if (isPragma_) return "#pragma once\n\n";
  return "#ifndef " + macro_ + "\n#define " + macro_ + "\n\n";
}

std::string Guard::closing() const {
  return isPragma_ ? std::string() : "\n#endif /* " + macro_ + " */\n";
}

}  // namespace orv
