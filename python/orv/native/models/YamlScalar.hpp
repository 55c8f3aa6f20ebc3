#ifndef ORV_MODELS_YAMLSCALAR_HPP
#define ORV_MODELS_YAMLSCALAR_HPP

#include <string_view>

namespace orv {

// What a plain scalar is by the core schema of YAML 1.2.
enum class YamlKind { text, null, boolean, integer, octal, hexadecimal, decimal, notFinite };

YamlKind yamlKind(std::string_view scalar);

// "a number", "a boolean", "null" or "a text", for messages.
const char* yamlKindName(YamlKind kind);

}  // namespace orv

#endif
