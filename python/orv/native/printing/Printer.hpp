#ifndef ORV_PRINTING_PRINTER_HPP
#define ORV_PRINTING_PRINTER_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <varn/VarnFileSectionKind.hpp>

#include "python/orv/native/PackagedFiles.hpp"
#include "python/orv/native/printing/FunctionNames.hpp"
#include "python/orv/native/printing/Indentation.hpp"
#include "python/orv/native/tracing/Trace.hpp"

namespace orv {

// The text printed between an opening tag and its end, with its destination.
struct Body {
  // Outside holds no text: text there belongs to no section. The text of fill and
  // capture becomes a value again, those of indent and user, a user region, go to the body below,
  // all other text to a file.
  enum class Kind { outside, section, function, fill, capture, indent, user };

  // A custom section that is put into the text at `offset`. `number` is the template side's.
  struct Placement {
    std::size_t offset;
    std::size_t number;
    // Of the custom section's lines.
    Indentation indentation;
    // Of a line that begins where the custom section ends: whether one does is not known before.
    Indentation following;
  };

  Kind kind = Kind::outside;
  // The file that tags in this body mean when they name none; -1 for none.
  int current = -1;
  // Where the text goes; `name` is that of a function or of a custom section, or the line that ends
  // a user region.
  int file = -1;
  Varn::VarnFileSectionKind section = Varn::BANNER_SECTION;
  std::string name;
  // Of a function: where its tag is, a number of the template side.
  std::size_t tag = 0;
  // Of the text of indent, when it goes to the body below.
  Indentation indentation;
  std::string text;
  std::vector<Placement> placements;
  // Of the text, in a run that is traced; and of the markers of a user region.
  TracedText traced;
  Origin markers;
};

// Appends the text that templates print, in order, to the sections of files. It has a stack of
// bodies; text goes to the top one. A body is committed when it is closed:
// a section's text is added in one piece, a function whole.
//
// A body with placements is kept back, and so is everything that is committed to the same section
// later, so that its order stays. finish() commits what was kept back.
//
// Text is UTF-8 without NUL characters. One printer serves one run, on one thread.
class Printer {
 public:
  // Gives the text of placement `number` in `body`, a body that is about to be committed.
  using Placer = std::function<std::string(std::size_t number, const Body& body)>;
  // Called for a function whose name another one of the same file has, before it is committed.
  // `first` is the tag of the other one. May throw.
  using RepeatListener = std::function<void(const Body& function, std::size_t first)>;

  // Starts with one body, which is outside, and no current file.
  Printer(std::shared_ptr<PackagedFiles> files, RepeatListener repeated);

  PackagedFiles& files() { return *files_; }
  Body& top() { return bodies_[depth_ - 1]; }
  // Bounds the text, in bytes, that is printed from now on; indented text counts again.
  void bound(std::size_t bytes) { left_ = bytes; }
  // Takes text that was printed from what is left; throws std::length_error when it is more.
  void count(std::size_t bytes);
  // The number of bodies that are open, at least 1.
  std::size_t depth() const { return depth_; }

  // Each opens a body. The file is checked: an unknown index throws the library's diagnostic, a
  // section that the file lacks throws pybind11::value_error. Sections are numbered like their
  // names.
  void openOutside(int current);
  // The body of the tag that makes a file the current one: outside or, in a text file, its section.
  void openFile(int file);
  void openSection(int file, int section);
  void openFunction(int file, std::string_view name, std::size_t tag);
  void openFill(int file, std::string_view name);
  void openCapture();
  // In a body that is outside, which has no lines to indent, another one that is outside.
  void openIndent(Indentation indentation);
  // Begins a user region, whose markers are the lines `beginning` and, when it is closed, `ending`.
  // In a run that is traced the markers come from `site`.
  void openUser(std::string_view beginning, std::string ending, std::uint32_t site);

  // The body that the text goes to: the top one that is no indent and no user region.
  const Body& destination() const;
  // Whether the text goes to a user region.
  bool isInUser() const;

  void append(std::string_view text) { top().text.append(text); }
  // Only where the text goes to a section or a function.
  void place(std::size_t number, Indentation indentation);

  // Closes the top body; commits it if its text goes to a file, and adds that of indent to the body
  // below. Returns the body, which is valid until the next one is opened. Throws std::logic_error
  // for the first body.
  Body& close();

  // Whether text for the section is kept back.
  bool isWaiting(int file, int section) const;
  // Commits what was kept back. Afterwards nothing is kept back any more.
  void finish(const Placer& placer);

 private:
  Body& open(Body::Kind kind);
  bool isWaitingFor(int file, Varn::VarnFileSectionKind kind) const;
  bool beginsLine() const;
  void appendMarker(std::string_view line, Origin origin);
  void indent(const Body& body);
  void appendIndented(std::string_view text, const Indentation& indentation, RangeReader& ranges);
  void commit(Body& body);
  void noteFunction(const Body& body);
  void add(Body& body);

  std::shared_ptr<PackagedFiles> files_;
  RepeatListener repeated_;
  // By file, null for those without functions; as long as the last file that has any.
  std::vector<std::unique_ptr<FunctionNames>> functions_;
  // The first `depth_` are open; the others are kept for their memory.
  std::vector<Body> bodies_;
  std::size_t depth_ = 0;
  std::size_t left_ = std::numeric_limits<std::size_t>::max();
  std::vector<Body> waiting_;
  // By file, one bit for each kind of section; as long as the last file that has any.
  std::vector<std::uint32_t> waitingSections_;
};

}  // namespace orv

#endif
