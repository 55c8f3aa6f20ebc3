#ifndef ORV_MODELS_MODELBUILDER_HPP
#define ORV_MODELS_MODELBUILDER_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>

#include "python/orv/native/models/Dictionaries.hpp"
#include "python/orv/native/models/ModelError.hpp"
#include "python/orv/native/models/Places.hpp"

namespace orv {

// What is said of places in a model.
using ModelRemark = std::pair<Location, std::string>;
using ModelRemarks = std::vector<ModelRemark>;

// Makes the value that templates see of what a model's reader reports piece by piece, and checks it
// on the way: every operation throws ModelError, with the location, for what no model may hold.
//
// Values are reported in the order of the file. In a dictionary each follows its key. The text that
// readers pass is UTF-8.
class ModelBuilder {
 public:
  // Records where values are written in `places`, unless it is null. `file` is of that table. Names
  // that are given twice are added to `repeatedNames`, which must outlive the builder; the value is
  // not to be used when there are any.
  ModelBuilder(Places* places, std::uint32_t file, ModelRemarks& repeatedNames)
      : places_(places), file_(file), repeatedNames_(repeatedNames) {}
  ~ModelBuilder() = default;
  ModelBuilder(const ModelBuilder&) = delete;
  ModelBuilder& operator=(const ModelBuilder&) = delete;

  void beginDictionary(Location location) { begin(true, location); }
  void beginList(Location location) { begin(false, location); }
  // Ends the innermost dictionary or list, and hands it out.
  pybind11::object end();
  // Adds the names that are given twice in what is open, before the reader gives up.
  void abandon();
  // How many dictionaries and lists are open.
  std::size_t depth() const { return open_.size(); }

  void key(std::string_view name, Location location);
  void text(std::string_view text, Location location);
  // Digits of the base, behind an optional sign.
  void integer(std::string_view digits, Location location, int base = 10);
  // A number as C writes it.
  void decimal(const std::string& number, Location location);
  // Any other value, made before.
  void value(pybind11::object value, Location location) {
    if (open_.empty()) {
      root_ = std::move(value);
      return;
    }
    values_.push_back(std::move(value));
    if (places_ != nullptr) entries_.push_back({location.line});
  }

  // Adds the entries of finished dictionaries to the innermost one, whose own go before those of
  // the same name; an earlier dictionary goes before a later one. They come first in order.
  void merge(const std::vector<pybind11::object>& sources);

  // The value that was reported last.
  pybind11::object last() const { return open_.empty() ? root_ : values_.back(); }
  // Takes the entry that was reported last out of the innermost dictionary, and hands its value
  // out.
  pybind11::object takeEntry();

  // The value, once all of it was reported.
  pybind11::object finish() { return std::move(root_); }

 private:
  // What is open, and where its parts begin below.
  struct Open {
    bool isDictionary;
    Location location;
    std::size_t firstKey;
    std::size_t firstValue;
  };

  // A text that was made, and the position of the one that was asked for after it.
  struct Text {
    pybind11::object text;
    std::size_t next = 0;
  };
  using Texts = std::array<Text, 1024>;

  void begin(bool isDictionary, Location location);
  void noteRepeated(std::size_t firstKey, std::size_t lastKey);

  // The text, mostly the same object for the same ASCII text.
  static const pybind11::object& shared(Text& known, std::string_view text, Location location);
  std::uint32_t lineOf(const pybind11::object& container, pybind11::handle key) const;

  Places* places_;
  std::uint32_t file_;
  ModelRemarks& repeatedNames_;
  pybind11::object root_;
  std::vector<Open> open_;
  // Of all that is open: the keys of dictionaries, with their locations, and values. A dictionary
  // or list is made when it ends.
  std::vector<pybind11::object> keys_;
  std::vector<Location> keyLocations_;
  std::vector<pybind11::object> values_;
  std::vector<Places::Entry> entries_;
  Dictionaries dictionaries_;
  // What was made last, by hash. Names are by themselves: there are few of them.
  Texts names_;
  Texts texts_;
  std::size_t lastName_ = 0;
};

}  // namespace orv

#endif
