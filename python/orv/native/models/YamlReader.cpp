#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>
#include <yaml.h>

#include "python/orv/native/Text.hpp"
#include "python/orv/native/models/Readers.hpp"
#include "python/orv/native/models/SourceText.hpp"
#include "python/orv/native/models/YamlScalar.hpp"

namespace orv {
namespace {

namespace py = pybind11;

// How many values aliases may lead to in all, and how many entries merge keys may add: bounds for
// what a small file can grow to when it is walked.
constexpr std::size_t mostReached = 10'000'000;
constexpr std::size_t mostMerged = 2'000'000;

constexpr std::string_view coreTags = "tag:yaml.org,2002:";

struct DeleteParser {
  void operator()(yaml_parser_t* parser) const {
    yaml_parser_delete(parser);
    delete parser;
  }
};

class Event {
 public:
  Event() = default;
  ~Event() { yaml_event_delete(&event_); }
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  yaml_event_t* operator->() { return &event_; }
  yaml_event_t* get() { return &event_; }
  Location location() const {
    return {static_cast<std::uint32_t>(event_.start_mark.line + 1),
            static_cast<std::uint32_t>(event_.start_mark.column + 1)};
  }

 private:
  yaml_event_t event_{};
};

std::string_view viewOf(const yaml_char_t* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

std::string shownTag(std::string_view tag) {
  if (tag.substr(0, coreTags.size()) != coreTags) return '"' + std::string(tag) + '"';
  return "!!" + std::string(tag.substr(coreTags.size()));
}

// What an anchor names. A list or dictionary that is still open holds the alias that finds it so.
struct Anchor {
  py::object value;
  std::size_t size = 1;  // the values in it, itself included, as often as a walk meets them
  std::size_t height = 0;
  bool isOpen = false;
};

struct Level {
  bool isMapping;
  bool expectsKey;
  bool isMerge = false;  // whether the value that comes next is that of a merge key
  std::string anchor;
  Anchor measure;
  std::vector<py::object> merged;
};

class YamlReader {
 public:
  YamlReader(std::string_view text, ModelBuilder& builder, ModelRemarks& warnings)
      : text_(text), builder_(builder), warnings_(warnings), parser_(new yaml_parser_t) {
    if (yaml_parser_initialize(parser_.get()) == 0) throw std::bad_alloc();
    yaml_parser_set_encoding(parser_.get(), YAML_UTF8_ENCODING);
    yaml_parser_set_input_string(parser_.get(), reinterpret_cast<const unsigned char*>(text.data()),
                                 text.size());
  }

  void read() {
    bool isFirst = true;
    for (;;) {
      Event event;
      if (yaml_parser_parse(parser_.get(), event.get()) == 0) fail();
      if (event->type == YAML_STREAM_END_EVENT) break;
      if (event->type == YAML_DOCUMENT_START_EVENT && !std::exchange(isFirst, false)) {
        throw ModelError(event.location(), "a model is one document; this is another one");
      }
      handle(event);
    }
    if (isFirst) builder_.value(py::none(), {1, 1});
  }

 private:
  void handle(Event& event) {
    switch (event->type) {
      case YAML_SCALAR_EVENT:
        return scalar(event);
      case YAML_ALIAS_EVENT:
        return alias(viewOf(event->data.alias.anchor), event.location());
      case YAML_SEQUENCE_START_EVENT:
        return begin(event, false, event->data.sequence_start.tag,
                     event->data.sequence_start.anchor);
      case YAML_MAPPING_START_EVENT:
        return begin(event, true, event->data.mapping_start.tag, event->data.mapping_start.anchor);
      case YAML_SEQUENCE_END_EVENT:
      case YAML_MAPPING_END_EVENT:
        return end(event.location());
      default:
        return;
    }
  }

  [[noreturn]] void fail() const {
    if (parser_->error == YAML_MEMORY_ERROR) throw std::bad_alloc();
    const std::string problem = parser_->problem == nullptr ? "no YAML" : parser_->problem;
    if (parser_->error == YAML_READER_ERROR) {
      throw ModelError(LineCounter(text_).at(parser_->problem_offset), problem);
    }
    const yaml_mark_t& mark = parser_->problem_mark;
    throw ModelError(
        {static_cast<std::uint32_t>(mark.line + 1), static_cast<std::uint32_t>(mark.column + 1)},
        problem);
  }

  bool expectsKey() const { return !levels_.empty() && levels_.back().expectsKey; }

  void begin(Event& event, bool isMapping, const yaml_char_t* tag, const yaml_char_t* anchor) {
    const Location location = event.location();
    if (expectsKey()) {
      throw ModelError(location, std::string("expected a text for a key, got ") +
                                     (isMapping ? "a mapping" : "a list"));
    }
    const std::string_view own = viewOf(tag);
    const bool isUntagged = own.empty() || own == "!";
    if (!isUntagged && own != std::string(coreTags) + (isMapping ? "map" : "seq")) {
      throw ModelError(location, "the tag " + shownTag(own) + " is not supported");
    }
    isMapping ? builder_.beginDictionary(location) : builder_.beginList(location);
    levels_.push_back({isMapping, isMapping, false, std::string(viewOf(anchor)), {}, {}});
    levels_.back().measure.height = 1;
    if (anchor != nullptr) {
      Anchor& named = anchors_[levels_.back().anchor];
      named = Anchor();
      named.isOpen = true;
    }
  }

  void end(Location location) {
    Level level = std::move(levels_.back());
    levels_.pop_back();
    if (!level.merged.empty()) builder_.merge(level.merged);
    level.measure.value = builder_.end();
    if (!level.anchor.empty()) anchors_[level.anchor] = level.measure;
    valueEnded(level.measure, location);
  }

  void scalar(Event& event) {
    const auto& data = event->data.scalar;
    const std::string_view text(reinterpret_cast<const char*>(data.value), data.length);
    const YamlKind kind = kindOf(event, text);
    Anchor measure;
    if (expectsKey()) {
      key(event, text, kind);
      if (data.anchor != nullptr) measure.value = toPython(text);
    } else {
      value(text, kind, event.location());
      if (data.anchor != nullptr) measure.value = builder_.last();
      valueEnded(measure, event.location());
    }
    if (data.anchor != nullptr) anchors_[std::string(viewOf(data.anchor))] = measure;
  }

  // The kind of a scalar by its tag, or else by its style and text.
  static YamlKind kindOf(Event& event, std::string_view text) {
    const auto& data = event->data.scalar;
    const std::string_view tag = viewOf(data.tag);
    const bool isPlain = data.style == YAML_PLAIN_SCALAR_STYLE;
    if (tag.empty()) return isPlain ? yamlKind(text) : YamlKind::text;
    if (tag == "!" || tag == std::string(coreTags) + "str") return YamlKind::text;
    const std::string shown = shownTag(tag);
    const YamlKind kind = yamlKind(text);
    const bool isInteger =
        kind == YamlKind::integer || kind == YamlKind::octal || kind == YamlKind::hexadecimal;
    if (shown == "!!float" && (kind == YamlKind::integer || kind == YamlKind::decimal)) {
      return YamlKind::decimal;
    }
    if ((shown == "!!int" && isInteger) || (shown == "!!bool" && kind == YamlKind::boolean) ||
        (shown == "!!null" && kind == YamlKind::null)) {
      return kind;
    }
    const bool isKnown =
        shown == "!!int" || shown == "!!float" || shown == "!!bool" || shown == "!!null";
    throw ModelError(event.location(),
                     isKnown ? "\"" + std::string(text) + "\" is not of the tag " + shown
                             : "the tag " + shown + " is not supported");
  }

  void key(Event& event, std::string_view text, YamlKind kind) {
    const auto& data = event->data.scalar;
    Level& level = levels_.back();
    const bool isPlain = data.style == YAML_PLAIN_SCALAR_STYLE && data.tag == nullptr;
    if (kind != YamlKind::text) {
      throw ModelError(event.location(), "the key " + std::string(text) + " is " +
                                             yamlKindName(kind) + "; put it in quotes");
    }
    level.isMerge = isPlain && text == "<<";
    builder_.key(text, event.location());
    level.expectsKey = false;
  }

  void value(std::string_view text, YamlKind kind, Location location) {
    switch (kind) {
      case YamlKind::text:
        return builder_.text(text, location);
      case YamlKind::null:
        return builder_.value(py::none(), location);
      case YamlKind::boolean:
        return builder_.value(py::bool_(text[0] == 't' || text[0] == 'T'), location);
      case YamlKind::octal:
        return builder_.integer(std::string(text.substr(2)), location, 8);
      case YamlKind::hexadecimal:
        return builder_.integer(std::string(text.substr(2)), location, 16);
      case YamlKind::integer:
        builder_.integer(text, location);
        return warnOfPrinting(text, location);
      case YamlKind::decimal:
        builder_.decimal(std::string(text), location);
        return warnOfPrinting(text, location);
      case YamlKind::notFinite:
        throw ModelError(
            location, "a model cannot hold " + std::string(text) + ", which is no finite number");
    }
  }

  void warnOfPrinting(std::string_view text, Location location) {
    const py::str printed(builder_.last());
    const std::string_view shown = utf8(printed, "a number");
    if (shown == text) return;
    const std::string written(text);
    warnings_.emplace_back(location, written + " is a number and prints as " + std::string(shown) +
                                         "; put it in quotes to keep it as it is written");
  }

  void alias(std::string_view name, Location location) {
    const auto found = anchors_.find(std::string(name));
    const std::string shown = "the alias *" + std::string(name);
    if (found == anchors_.end()) throw ModelError(location, shown + " has no anchor");
    const Anchor& anchor = found->second;
    if (anchor.isOpen) throw ModelError(location, shown + " is inside of what it refers to");
    if (expectsKey()) {
      if (!py::isinstance<py::str>(anchor.value)) {
        throw ModelError(location, shown + " is a key, but no text");
      }
      builder_.key(utf8(anchor.value, "a key"), location);
      levels_.back().expectsKey = false;
      return;
    }
    reached_ += anchor.size;
    if (reached_ > mostReached) {
      throw ModelError(location,
                       "aliases lead to more than " + std::to_string(mostReached) + " values");
    }
    if (builder_.depth() + anchor.height > deepestModel) {
      throw ModelError(location, "with " + shown + " the model is nested more than " +
                                     std::to_string(deepestModel) + " deep");
    }
    builder_.value(anchor.value, location);
    valueEnded(anchor, location);
  }

  // Counts a value that is complete in what holds it, and merges that of a merge key.
  void valueEnded(const Anchor& measure, Location location) {
    if (levels_.empty()) return;
    Level& level = levels_.back();
    level.measure.size += measure.size;
    level.measure.height = std::max(level.measure.height, measure.height + 1);
    if (!level.isMapping) return;
    level.expectsKey = true;
    if (!std::exchange(level.isMerge, false)) return;
    const py::object value = builder_.takeEntry();
    if (py::isinstance<py::list>(value)) {
      for (const py::handle source : value) addMerged(level, source, location);
    } else {
      addMerged(level, value, location);
    }
  }

  void addMerged(Level& level, py::handle source, Location location) {
    if (!py::isinstance<py::dict>(source)) {
      throw ModelError(location, "expected a mapping or a list of mappings to merge");
    }
    merged_ += static_cast<std::size_t>(PyDict_Size(source.ptr()));
    if (merged_ > mostMerged) {
      throw ModelError(location,
                       "merge keys add more than " + std::to_string(mostMerged) + " entries");
    }
    level.merged.push_back(py::reinterpret_borrow<py::object>(source));
  }

  std::string_view text_;
  ModelBuilder& builder_;
  ModelRemarks& warnings_;
  std::unique_ptr<yaml_parser_t, DeleteParser> parser_;
  std::unordered_map<std::string, Anchor> anchors_;
  std::vector<Level> levels_;
  std::size_t reached_ = 0;
  std::size_t merged_ = 0;
};

}  // namespace

void readYaml(std::string_view text, ModelBuilder& builder, ModelRemarks& warnings) {
  YamlReader(text, builder, warnings).read();
}

}  // namespace orv
