// The formats of models. Each reader reports what a file holds to a builder; `text` is what
// sourceText() gave. They throw ModelError.
#ifndef ORV_MODELS_READERS_HPP
#define ORV_MODELS_READERS_HPP

#include <string_view>

#include "python/orv/native/models/ModelBuilder.hpp"

namespace orv {

void readJson(std::string_view text, ModelBuilder& builder);
// YAML 1.2 with its core schema and merge keys. Numbers that print otherwise than they are written
// are warned about.
void readYaml(std::string_view text, ModelBuilder& builder, ModelRemarks& warnings);
void readToml(std::string_view text, ModelBuilder& builder);
// Comma-separated values as RFC 4180 has them: a list of dictionaries with the names of the first
// line, all values texts.
void readCsv(std::string_view text, ModelBuilder& builder);

}  // namespace orv

#endif
