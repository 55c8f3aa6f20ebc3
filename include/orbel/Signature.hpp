#ifndef ORBEL_SIGNATURE_HPP
#define ORBEL_SIGNATURE_HPP

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include <orbel/Export.hpp>

namespace orbel {

// The types that the host's type words distinguish.
enum class TypeKind {
  nothing,     // "void", as a result only
  text,        // "char vector" or "char"
  logical,     // "logical scalar"
  uint32,      // "uint32 scalar"
  stringList,  // "cell": a column of character arrays
  object,      // a class name qualified with its package
};

// Nothing when `word` is no type word.
ORBEL_EXPORT std::optional<TypeKind> typeKind(const std::string& word);

// The type word that a value of `kind`, which is not an object, is described with.
ORBEL_EXPORT const char* typeWord(TypeKind kind);

// The types of a method in the host's type words.
class ORBEL_EXPORT Signature {
 public:
  // The result first, then the class itself, then the further arguments.
  Signature(std::initializer_list<std::string> words);

  // Empty when no words were given at all.
  const std::string& result() const { return result_; }
  // The class itself first.
  const std::vector<std::string>& arguments() const { return arguments_; }

 private:
  std::string result_;
  std::vector<std::string> arguments_;
};

}  // namespace orbel

#endif
