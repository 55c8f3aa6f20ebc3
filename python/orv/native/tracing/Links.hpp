#ifndef ORV_TRACING_LINKS_HPP
#define ORV_TRACING_LINKS_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>

#include "python/orv/native/models/Element.hpp"

namespace orv {

// Texts, each once, by number. Number 0 is the empty text.
class Strings {
 public:
  Strings() { static_cast<void>(number("")); }
  std::uint32_t number(std::string_view text);
  const std::vector<const std::string*>& all() const { return texts_; }

 private:
  std::unordered_map<std::string, std::uint32_t> numbers_;
  std::vector<const std::string*> texts_;
};

// What a loop has at hand: a value of the model, as it can be found again in `Places`.
struct LoopElement {
  enum class Kind : std::uint8_t { unknown, container, item, entry, xml };

  Kind kind = Kind::unknown;
  // Of an item or an XML element; of an entry in Links' keys.
  std::uint32_t position = 0;
  // The container itself, or the one of the item or entry; kept alive by Links. Of an XML element
  // its model.
  void* holder = nullptr;
};

// How the text that is printed came to be printed: macros, includes, blocks and loops that run,
// each a link to the one around it. A link is made when something is printed below it.
class Links {
 public:
  // What a link does, by name: "macro" and its name.
  struct Label {
    std::uint32_t kind;
    std::uint32_t name;
    bool operator==(const Label& other) const { return kind == other.kind && name == other.name; }
  };
  struct Link {
    std::uint32_t parent;
    std::uint32_t site;
    std::uint32_t label;
    // One past the position in elements(), or 0.
    std::uint32_t element;
  };

  Links();

  // The number of a kind and name of links. Texts are numbers of strings.
  std::uint32_t addLabel(Label label);

  std::size_t depth() const { return frames_.size(); }
  void enter(std::uint32_t site, std::uint32_t label) {
    frames_.push_back({site, label, 0, {}, {}, -1});
  }
  // A loop has an element at hand, at a position of what it iterates over, or -1.
  void enterLoop(std::uint32_t site, pybind11::object element, pybind11::object iterated,
                 std::int64_t position);
  // Where the link that was entered at `depth` was asked for.
  std::uint32_t siteAt(std::size_t depth) const { return frames_[depth].site; }
  // Leaves everything above `depth`.
  void leaveTo(std::size_t depth);

  // The innermost link; 0 for none.
  std::uint32_t current() {
    if (frames_.empty()) return 0;
    return frames_.back().link != 0 ? frames_.back().link : make();
  }

  // The first is "none".
  const std::vector<Link>& links() const { return links_; }
  const std::vector<Label>& labels() const { return labels_; }
  const std::vector<LoopElement>& elements() const { return elements_; }
  pybind11::handle key(const LoopElement& entry) const { return keys_[entry.position]; }

  // The label of loops.
  void nameLoops(std::uint32_t label) { loopLabel_ = label; }

 private:
  struct Frame {
    std::uint32_t site;
    std::uint32_t label;
    std::uint32_t link;
    pybind11::object element;
    pybind11::object iterated;
    std::int64_t position;
  };

  std::uint32_t make();
  LoopElement elementOf(const Frame& frame);
  LoopElement keep(pybind11::handle container);

  std::vector<Frame> frames_;
  std::vector<Link> links_;
  std::vector<Label> labels_;
  std::vector<LoopElement> elements_;
  std::vector<pybind11::object> keys_;
  // Keep alive what elements refer to: containers that are no model's, and XML models.
  std::vector<pybind11::object> containers_;
  std::vector<std::shared_ptr<const XmlModel>> models_;
  std::uint32_t loopLabel_ = 0;
};

}  // namespace orv

#endif
