#ifndef VARN_BENCHMARKS_PACKAGING_PEERS_SECTIONSBYNAME_HPP
#define VARN_BENCHMARKS_PACKAGING_PEERS_SECTIONSBYNAME_HPP

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <boost/unordered_map.hpp>

#include "Inputs.hpp"
#include "sections/NameTable.hpp"

namespace bench {

// A straightforward name look-up, as in the literal form.
class MapLookUp {
 public:
  MapLookUp() {
    for (std::size_t i = 0; i < sectionCount; ++i) positions_[sectionNames()[i]] = i;
  }
  std::size_t find(const std::string& name) const { return positions_.at(name); }

 private:
  boost::unordered_map<std::string, std::size_t> positions_;
};

// The library's own look-up.
class TableLookUp {
 public:
  TableLookUp() : table_(views()) {}
  std::size_t find(const std::string& name) const {
    const int position = table_.find(name);
    if (position < 0) throw std::out_of_range(name);
    return static_cast<std::size_t>(position);
  }

 private:
  static std::array<std::string_view, sectionCount> views() {
    std::array<std::string_view, sectionCount> names;
    for (std::size_t i = 0; i < sectionCount; ++i) names[i] = sectionNames()[i];
    return names;
  }

  Varn::NameTable<sectionCount> table_;
};

// A generator written by hand: for each file an array of sections, and nothing else.
template <typename Section, typename LookUp = MapLookUp>
class SectionsByName {
 public:
  void createFile(const std::string& /*name*/) { files_.push_back(std::make_unique<File>()); }
  void add(std::size_t file, const std::string& section, const char* text) {
    (*files_.at(file))[lookUp_.find(section)].append(text);
  }
  void write(std::size_t file, const std::string& section, FILE* stream) {
    (*files_.at(file))[lookUp_.find(section)].write(stream);
  }

 private:
  using File = std::array<Section, sectionCount>;

  LookUp lookUp_;
  std::vector<std::unique_ptr<File>> files_;
};

}  // namespace bench

#endif
