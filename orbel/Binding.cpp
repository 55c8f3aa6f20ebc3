#include "orbel/Binding.hpp"

#include <vector>

#include "orbel/HostErrors.hpp"

namespace orbel::binding {
namespace {

[[noreturn]] void refuse(const Member& member, const std::string& reason) {
  raise("SignatureMismatch", {member.qualifiedName(), reason});
}

void checkWord(const Member& member, const std::string& what, const std::string& word,
               TypeKind expected) {
  const auto declared = typeKind(word);
  if (!declared) refuse(member, what + " is declared \"" + word + "\", which is no type");
  if (*declared != expected) {
    refuse(member, what + " is declared \"" + word + "\", but is \"" + typeWord(expected) + "\"");
  }
}

// `first` is where in `words` the words for `kinds` begin.
void checkArguments(const Member& member, const std::vector<std::string>& words, std::size_t first,
                    std::initializer_list<TypeKind> kinds) {
  const std::size_t declared = words.size() - first;
  if (declared != kinds.size()) {
    refuse(member, std::to_string(declared) + " argument(s) are declared, but there are " +
                       std::to_string(kinds.size()));
  }
  std::size_t position = 1;
  for (const TypeKind kind : kinds) {
    checkWord(member, "argument " + std::to_string(position), words[first + position - 1], kind);
    ++position;
  }
}

}  // namespace

void checkSignature(const Member& member, const Signature& signature, TypeKind result,
                    std::initializer_list<TypeKind> arguments) {
  checkWord(member, "the result", signature.result(), result);
  const std::string& own = member.owner().qualifiedName();
  const auto& words = signature.arguments();
  if (words.empty() || words.front() != own) {
    refuse(member, "the class itself, \"" + own + "\", must be the first argument");
  }
  checkArguments(member, words, 1, arguments);
}

void checkSignature(const Constructor& constructor, std::initializer_list<TypeKind> arguments) {
  checkArguments(constructor, constructor.signature(), 0, arguments);
}

}  // namespace orbel::binding
