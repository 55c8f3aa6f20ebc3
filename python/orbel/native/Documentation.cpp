#include "python/orbel/native/Documentation.hpp"

#include <algorithm>
#include <map>

#include <orbel/Signature.hpp>

namespace orbel::python {
namespace {

std::string join(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

const char* parameterName(const std::string& word) {
  switch (typeKind(word).value_or(TypeKind::object)) {
    case TypeKind::text:
      return "text";
    case TypeKind::logical:
      return "flag";
    case TypeKind::uint32:
      return "number";
    case TypeKind::stringList:
      return "texts";
    case TypeKind::nothing:
    case TypeKind::object:
      break;
  }
  return "object";
}

}  // namespace

std::string classDocumentation(const ClassInfo& info) {
  const std::string& name = info.qualifiedName();
  std::string text = info.getDescription() + "\n\n";
  if (info.isAbstract()) {
    return text + "Host class " + name + ": abstract, only its subclasses have objects.";
  }
  if (info.constructor() == nullptr) {
    return text + "Host class " + name + ": scripts do not make objects of it.";
  }
  return text + "Host class " + name + ", made by " + name + "(" +
         join(info.constructor()->signature()) + ").";
}

std::string methodDocumentation(const Method& method) {
  const Signature& signature = method.signature();
  return method.name() + "(" + join(signature.arguments()) + ") returns " + signature.result();
}

std::string propertyDocumentation(const Property& property) {
  return property.type() + (property.isWritable() ? "" : ", read only");
}

std::string parameterList(const std::vector<std::string>& words, std::size_t first) {
  std::map<std::string, int> total;
  for (std::size_t i = first; i < words.size(); ++i) ++total[parameterName(words[i])];
  std::map<std::string, int> used;
  std::string text;
  for (std::size_t i = first; i < words.size(); ++i) {
    const std::string name = parameterName(words[i]);
    const int number = ++used[name];
    text += (total[name] > 1 ? name + std::to_string(number) : name) + ", ";
  }
  return text.empty() ? text : text + "/";
}

const Property* firstTextProperty(const ClassInfo& info) {
  const auto& own = info.properties();
  const auto found = std::find_if(own.begin(), own.end(), [](const auto& property) {
    return typeKind(property->type()) == TypeKind::text;
  });
  if (found != own.end()) return found->get();
  for (const auto& superclass : info.superclasses()) {
    if (const Property* inherited = firstTextProperty(*superclass.info)) return inherited;
  }
  return nullptr;
}

}  // namespace orbel::python
