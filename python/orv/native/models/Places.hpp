#ifndef ORV_MODELS_PLACES_HPP
#define ORV_MODELS_PLACES_HPP

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>

#include "python/orv/native/models/DistinctTexts.hpp"

namespace orv {

// Where the values of models were written: the file and line of each dictionary and list, known by
// its identity, and of each of their entries, known by container and key.
//
// Keeps the containers that it knows alive, so that no other object can take on their identity.
// Entries that are added to a known container, and all entries of one whose first keys or items
// were changed, are taken to come from where the container begins.
//
// Not safe for use from several threads at once; the interpreter's lock is enough.
class Places {
 public:
  struct Place {
    std::uint32_t file;
    std::uint32_t line;  // 0: the file as a whole
  };

  static constexpr std::uint32_t none = UINT32_MAX;

  // Of a container that is recorded: the line of an entry, and the record of the container that is
  // its value, or `none`.
  struct Entry {
    std::uint32_t line;
    std::uint32_t record = none;
  };

  Places() = default;
  ~Places() = default;
  Places(const Places&) = delete;
  Places& operator=(const Places&) = delete;

  // A file, or whatever else values come from, by the name that messages give it.
  std::uint32_t addFile(std::string label);

  // The entries of a container: its keys, or null for a list, and the fingerprint of these or of
  // the items.
  struct Content {
    const pybind11::object* keys;
    const Entry* entries;
    std::size_t count;
    std::uint32_t fingerprint;
  };

  // Records a container as the model's reader leaves it, with all its entries in order. The result
  // is its record.
  std::uint32_t add(pybind11::handle container, Place place, const Content& content);

  // Records a dictionary of which nothing but its origin is known.
  void note(pybind11::handle dictionary, Place place);

  // Records a dictionary that was made of two known ones: each entry is where the second has it,
  // or else where the first has it.
  void addMerged(pybind11::handle merged, pybind11::handle first, pybind11::handle second);

  // How a known container is found from the model: the record of the one that it is in, or `none`,
  // and its key there, null in a list.
  struct Step {
    std::uint32_t parent;
    pybind11::handle key;
    std::uint32_t position;
    Place place;
  };

  // The record of a container, or `none`.
  std::uint32_t recordOf(PyObject* container) const;
  Step step(std::uint32_t record) const;
  // The name of a file.
  const std::string& file(std::uint32_t number) const { return files_[number]; }

  // Where an entry of a known container was written; with no key, or one that the container does
  // not have, where the container begins. Nothing for an unknown container.
  std::optional<Place> find(pybind11::handle container, pybind11::handle key) const;

  // The way to an entry, or with no key to the container, as a template writes it: `vars[1].type`.
  // Nothing for an unknown container.
  std::optional<std::string> path(pybind11::handle container, pybind11::handle key) const;

  // "FILE:LINE", or the file alone.
  std::string text(Place place) const;

 private:
  struct Record {
    pybind11::object container;
    std::uint32_t parent;
    std::uint32_t step;  // from the parent: a position in a list, or in keys_
    std::uint32_t line;
    std::uint32_t layout;       // in layouts_
    std::uint32_t fingerprint;  // of the keys or items that there were
  };

  // How the places of a container's entries are stored: as offsets from its own line, or as places.
  enum class Width : std::uint32_t { sameLine, byte, word, place };

  static Width widthOf(std::uint32_t line, const Content& content);

  // What a layout begins with. The places of entries follow.
  struct Header {
    std::uint32_t count;
    Width width;
  };

  // Of the container that was asked for last: the positions of its keys, when they are unchanged.
  struct Positions {
    std::uint32_t record = none;
    Py_ssize_t size = 0;
    bool areIntact = false;
    pybind11::dict ofKeys;
  };

  std::uint32_t addRecord(pybind11::handle container, Place place, std::uint32_t fingerprint);
  void addFinished(pybind11::handle dictionary, Place place, const std::vector<Place>& places);
  void setParent(std::uint32_t child, std::uint32_t parent, pybind11::handle key,
                 std::size_t position);
  pybind11::handle keyOf(const Record& record) const;
  Place placeOf(std::uint32_t record) const;
  Header headerOf(std::uint32_t record) const;
  std::size_t slotOf(PyObject* container) const;
  void indexRecords() const;
  const Positions& positionsOf(std::uint32_t record) const;
  std::optional<std::uint32_t> positionOf(std::uint32_t record, pybind11::handle key) const;
  Place entryPlace(std::uint32_t record, std::uint32_t position) const;

  std::vector<std::string> files_;
  // Many: they are not to be copied when there are more.
  std::deque<Record> records_;
  // Those of containers in dictionaries.
  std::vector<pybind11::object> keys_;
  // The first of the records that come from a file, and the file; ascending.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> origins_;
  // Headers and places, which most containers of one kind have in common.
  DistinctTexts layouts_;
  std::string layout_;  // the one at hand
  // Open addressing, by the container's address: one past the index of a record, or 0. Holds the
  // first records only, until somebody asks for one.
  mutable std::vector<std::uint32_t> slots_;
  mutable std::size_t indexed_ = 0;
  mutable Positions positions_;
};

// Changes with the keys of a dictionary or the items of a list, which are compared by identity.
std::uint32_t fingerprintOf(const pybind11::object* parts, std::size_t count);

// Appends a key to a path, as Places::path() shows it.
void appendKey(std::string& path, pybind11::handle key);

}  // namespace orv

#endif
