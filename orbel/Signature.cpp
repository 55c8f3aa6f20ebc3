#include "orbel/Signature.hpp"

#include <algorithm>
#include <array>

namespace orbel {
namespace {

struct TypeWordRow {
  const char* word;
  TypeKind kind;
};

// The first word of a kind is the one that the host itself uses.
constexpr std::array<TypeWordRow, 6> typeWords{{
    {"void", TypeKind::nothing},
    {"char vector", TypeKind::text},
    {"char", TypeKind::text},
    {"logical scalar", TypeKind::logical},
    {"uint32 scalar", TypeKind::uint32},
    {"cell", TypeKind::stringList},
}};

bool isQualifiedName(const std::string& word) {
  const auto point = word.rfind('.');
  return point != std::string::npos && point != 0 && point + 1 != word.size();
}

}  // namespace

std::optional<TypeKind> typeKind(const std::string& word) {
  const auto* row = std::find_if(typeWords.begin(), typeWords.end(),
                                 [&](const TypeWordRow& known) { return word == known.word; });
  if (row != typeWords.end()) return row->kind;
  return isQualifiedName(word) ? std::optional(TypeKind::object) : std::nullopt;
}

const char* typeWord(TypeKind kind) {
  const auto* row = std::find_if(typeWords.begin(), typeWords.end(),
                                 [&](const TypeWordRow& known) { return kind == known.kind; });
  return row == typeWords.end() ? "a qualified class name" : row->word;
}

Signature::Signature(std::initializer_list<std::string> words) {
  if (words.size() != 0) {
    result_ = *words.begin();
    arguments_.assign(words.begin() + 1, words.end());
  }
}

}  // namespace orbel
