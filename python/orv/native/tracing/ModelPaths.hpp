#ifndef ORV_TRACING_MODELPATHS_HPP
#define ORV_TRACING_MODELPATHS_HPP

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "python/orv/native/models/Places.hpp"
#include "python/orv/native/tracing/Deltas.hpp"
#include "python/orv/native/tracing/Links.hpp"

namespace orv {

// The ways to values of the model as a table, each the step from another one: the number of that
// one, or 0; the text of the step, or 0 for an item of a list; the item's position; the file and
// line where the value was written, 0 for not known. Numbers count from 1; texts and files are
// numbers of strings.
class ModelPaths {
 public:
  ModelPaths(const Places& places, Strings& strings) : places_(places), strings_(strings) {}

  // The number of the way to an element; 0 when it is not of the model.
  std::uint32_t add(const LoopElement& element, const Links& links);

  const std::string& table() const { return table_.text(); }

 private:
  struct Child {
    XmlDocument::Position position;
    std::string step;
  };
  using Node = std::pair<const XmlModel*, XmlDocument::Position>;

  std::uint32_t addRecord(std::uint32_t record);
  std::uint32_t addEntry(const LoopElement& element, pybind11::handle key);
  std::uint32_t addXml(const XmlModel& model, XmlDocument::Position wanted);
  const std::vector<Child>& childrenOf(const Node& parent);
  std::uint32_t append(std::uint32_t parent, const std::string& step, std::uint32_t position,
                       std::optional<Places::Place> place);
  std::uint32_t append(std::uint32_t parent, const std::string& step, std::uint32_t position,
                       std::uint32_t file, std::uint32_t line);

  const Places& places_;
  Strings& strings_;
  DeltaTable<5> table_;
  std::uint32_t count_ = 0;
  // By record: one past its number, or 0 while it is not known. As long as the last record needs.
  std::vector<std::uint32_t> byRecord_;
  // By file of places.
  std::vector<std::uint32_t> files_;
  std::map<Node, std::uint32_t> byNode_;
  std::map<Node, std::vector<Child>> children_;
};

}  // namespace orv

#endif
