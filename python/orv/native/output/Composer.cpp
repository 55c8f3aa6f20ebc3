#include "python/orv/native/output/Composer.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <ostream>
#include <streambuf>
#include <string>

#include <pybind11/pybind11.h>

#include <varn/IncludesSection.hpp>

#include "python/orv/native/SectionAccess.hpp"
#include "python/orv/native/SectionNames.hpp"

namespace orv {
namespace {

using Varn::VarnFileSectionKind;

// What a section may use comes before it: checks of the compilation after the includes that they
// look at, types after what they are made of, declarations before definitions. A header checks what
// its includer has set up before it adds to it; a source checks what all of its includes and its
// own defines have come to, and its user's top part comes before its code.
const SectionOrder headerOrder = {
    Varn::BANNER_SECTION,
    Varn::DOCUMENTATION_SECTION,
    Varn::INCLUDES_SECTION,
    Varn::MODELTYPES_INCLUDES_SECTION,
    Varn::COMPILER_ERRORS_SECTION,
    Varn::COMPILER_WARNINGS_SECTION,
    Varn::USERTOP_SECTION,
    Varn::MODELTYPES_DEFINES_SECTION,
    Varn::DEFINES_SECTION,
    Varn::INTRINSIC_TYPES_SECTION,
    Varn::PRIMITIVE_TYPEDEFS_SECTION,
    Varn::FORWARD_DECLS_SECTION,
    Varn::ENUMERATIONS_SECTION,
    Varn::MODELTYPES_TYPEDEFS_SECTION,
    Varn::TYPEDEFS_SECTION,
    Varn::EXTERN_DATA_SECTION,
    Varn::EXTERN_FCNS_SECTION,
    Varn::FCN_PROTOTYPES_SECTION,
    Varn::DECLARATIONS_SECTION,
    Varn::DEFINITIONS_SECTION,
    Varn::FUNCTIONS_SECTION,
    Varn::USERBOTTOM_SECTION,
};

// The headers' order with the checks moved to after the types.
SectionOrder makeSourceOrder() {
  SectionOrder order = headerOrder;
  const auto checks = std::find(order.begin(), order.end(), Varn::COMPILER_ERRORS_SECTION);
  const auto typesEnd = std::find(order.begin(), order.end(), Varn::EXTERN_DATA_SECTION);
  std::rotate(checks, checks + 2, typesEnd);
  return order;
}

const SectionOrder& sourceOrder() {
  static const SectionOrder order = makeSourceOrder();
  return order;
}

bool endsWith(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

// The bytes of a stream. Large texts grow without being copied.
class MemoryBuffer : public std::streambuf {
 public:
  MemoryBuffer() = default;
  MemoryBuffer(const MemoryBuffer&) = delete;
  MemoryBuffer& operator=(const MemoryBuffer&) = delete;
  ~MemoryBuffer() override { std::free(characters_); }

  // Everything written so far, valid until more is written.
  std::string_view written() const { return {characters_, size_}; }
  ComposedFile finish(std::vector<ComposedFile::Section> sections, Guard guard, TracedText traced) {
    reserve(size_);
    return {std::exchange(characters_, nullptr), size_, std::move(sections), std::move(guard),
            std::move(traced)};
  }

 protected:
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    const auto size = static_cast<std::size_t>(count);
    const std::size_t whole = size_ + size;
    if (whole > capacity_) reserve(std::max(whole, 2 * capacity_));
    if (size != 0) std::memcpy(characters_ + size_, text, size);
    size_ = whole;
    return count;
  }

 private:
  void reserve(std::size_t capacity) {
    void* moved = std::realloc(characters_, std::max<std::size_t>(capacity, 1));
    if (moved == nullptr) throw std::bad_alloc();
    characters_ = static_cast<char*>(moved);
    capacity_ = capacity;
  }

  char* characters_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

// The text of a file, its sections and, in a run that is traced, where it comes from.
class FileText {
 public:
  FileText(PackagedFiles& files, int index) : files_(files), index_(index) {
    // What the buffer throws is thrown by the stream, too.
    stream_.exceptions(std::ios::badbit);
  }

  std::string_view written() const { return memory_.written(); }
  // Text of the engine's own.
  void write(std::string_view text, Trace::Kind kind) {
    put(text);
    if (files_.trace) traced_.ranges.append(text.size(), Trace::ownOrigin(kind));
  }
  // Returns the number of bytes of the section.
  std::size_t writeSection(VarnFileSectionKind kind);
  // The text of an includes section, without its first byte if that is `dropped`.
  std::size_t writeIncludes(const Varn::FileSection& section, std::string_view text, bool dropped);
  ComposedFile finish(Guard guard) {
    return memory_.finish(std::move(sections_), std::move(guard), std::move(traced_));
  }

 private:
  void put(std::string_view text) {
    stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
  }
  void record(VarnFileSectionKind kind, std::size_t size, const TracedText& text);

  PackagedFiles& files_;
  int index_;
  MemoryBuffer memory_;
  std::ostream stream_{&memory_};
  std::vector<ComposedFile::Section> sections_;
  TracedText traced_;
};

std::size_t FileText::writeSection(VarnFileSectionKind kind) {
  const std::size_t before = written().size();
  files_.file(index_).getFileSection(kind).printToStream(stream_);
  const std::size_t size = written().size() - before;
  const bool isTraced = files_.trace && size != 0;
  record(kind, size, isTraced ? files_.trace->sectionText(index_, kind, size) : TracedText());
  return size;
}

std::size_t FileText::writeIncludes(const Varn::FileSection& section, std::string_view text,
                                    bool dropped) {
  if (dropped) text.remove_prefix(1);
  put(text);
  TracedText traced;
  if (files_.trace) {
    const auto& includes = dynamic_cast<const Varn::IncludesSection&>(section);
    traced = files_.trace->includesText(index_, includes);
    if (dropped) traced = traced.withoutFirst();
  }
  record(Varn::INCLUDES_SECTION, text.size(), traced);
  return text.size();
}

void FileText::record(VarnFileSectionKind kind, std::size_t size, const TracedText& text) {
  if (size == 0) return;
  const int number = sectionNumber(files_, index_, kind);
  sections_.push_back({number, size});
  if (!files_.trace) return;
  const std::string& name = sectionNames()[static_cast<std::size_t>(number)];
  traced_.spans.push_back({Span::Kind::section, name, traced_.ranges.size(), size});
  traced_.append(text);
}

Guard guardOf(const Varn::VarnFile& file, const Composition& composition) {
  const std::string& macro = file.getDefinedMacro();
  if (!composition.guarded) {
    if (macro.empty()) return {};
    throw pybind11::value_error("it has the DefinedMacro \"" + macro + "\" and guard=false");
  }
  if (!isHeader(file)) return {};
  if (!macro.empty()) return Guard::ofMacro(macro);
  if (composition.guardForm.empty()) return {};
  return Guard::ofForm(composition.guardForm, composition.path);
}

// Whether `extern "C"` holds the section. Include lines stay outside, and so does what the user
// puts first and last, which may include headers.
bool isExternC(VarnFileSectionKind kind) {
  const auto position = std::find(headerOrder.begin(), headerOrder.end(), kind);
  const auto first =
      std::find(headerOrder.begin(), headerOrder.end(), Varn::MODELTYPES_DEFINES_SECTION);
  return position >= first && kind != Varn::USERBOTTOM_SECTION;
}

// `whatLeavesOut` begins the message.
void requireAll(const Varn::VarnFile& file, const SectionOrder& order, const char* whatLeavesOut) {
  for (const VarnFileSectionKind kind : headerOrder) {
    if (std::find(order.begin(), order.end(), kind) != order.end()) continue;
    if (!file.hasSection(kind) || file.getFileSection(kind).getContent().empty()) continue;
    throw pybind11::value_error(std::string(whatLeavesOut) + " the section \"" +
                                sectionNames()[static_cast<std::size_t>(kind)] +
                                "\", which has text");
  }
}

ComposedFile composeText(PackagedFiles& files, int index) {
  requireAll(files.file(index), {textKind}, "a text file leaves out");
  FileText text(files, index);
  text.writeSection(textKind);
  return text.finish({});
}

bool endsWithBlankLine(std::string_view text) { return text.empty() || endsWith(text, "\n\n"); }

// Whether the text of an includes section is written without the blank line that it begins with,
// which sets it apart from what comes before.
bool dropsBlankLine(std::string_view written, std::string_view text, bool blankLines) {
  return !text.empty() && text[0] == '\n' &&
         (written.empty() || (blankLines && endsWithBlankLine(written)));
}

// Writes the sections of one file, with the guard and the linkage around them.
class FileWriter {
 public:
  FileWriter(PackagedFiles& files, int index, const Composition& composition)
      : file_(files.file(index)),
        composition_(composition),
        guard_(guardOf(file_, composition)),
        text_(files, index) {}

  ComposedFile finish() {
    const SectionOrder& order = composition_.order ? *composition_.order
                                : isHeader(file_)  ? headerOrder
                                                   : sourceOrder();
    for (const VarnFileSectionKind kind : order) {
      if (kind != Varn::BANNER_SECTION) openGuard();
      if (!hasText(kind)) continue;
      setExternC(composition_.externC && isExternC(kind));
      writeLines(kind);
    }
    setExternC(false);
    if (isGuardOpen_) text_.write(guard_.closing(), Trace::Kind::guard);
    return text_.finish(std::move(guard_));
  }

 private:
  // The includes section counts as empty while it has nothing but required or utility includes.
  bool hasText(VarnFileSectionKind kind) const {
    if (!file_.hasSection(kind)) return false;
    const Varn::FileSection& section = file_.getFileSection(kind);
    return kind == Varn::INCLUDES_SECTION ? !section.getContent().empty() : !section.isEmpty();
  }

  void separate() {
    if (!endsWithBlankLine(text_.written())) text_.write("\n", Trace::Kind::blank);
  }

  void openGuard() {
    if (isGuardOpen_ || !guard_.exists()) return;
    if (composition_.blankLines) separate();
    text_.write(guard_.opening(), Trace::Kind::guard);
    isGuardOpen_ = true;
  }

  void setExternC(bool isWanted) {
    if (isWanted == isExternCOpen_) return;
    separate();
    text_.write(isWanted ? "#ifdef __cplusplus\nextern \"C\" {\n#endif\n\n"
                         : "#ifdef __cplusplus\n}\n#endif\n",
                Trace::Kind::linkage);
    isExternCOpen_ = isWanted;
  }

  void writeLines(VarnFileSectionKind kind) {
    const Varn::FileSection& section = file_.getFileSection(kind);
    if (composition_.blankLines) {
      const std::string& text = section.getContent();
      if (!text.empty() && text[0] != '\n') separate();
    }
    std::size_t size = 0;
    if (kind == Varn::INCLUDES_SECTION) {
      const std::string& text = section.getContent();
      const bool drops = dropsBlankLine(text_.written(), text, composition_.blankLines);
      size = text_.writeIncludes(section, text, drops);
    } else {
      size = text_.writeSection(kind);
    }
    if (size != 0 && text_.written().back() != '\n') text_.write("\n", Trace::Kind::newline);
  }

  Varn::VarnFile& file_;
  const Composition& composition_;
  Guard guard_;
  FileText text_;
  bool isGuardOpen_ = false;
  bool isExternCOpen_ = false;
};

}  // namespace

bool isHeader(const Varn::VarnFile& file) {
  const std::string_view name =
      file.getNameAscii().empty() ? file.getBaseName() : file.getNameAscii();
  std::string lower(name.substr(name.size() - std::min<std::size_t>(name.size(), 4)));
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  for (const char* ending : {".h", ".hh", ".hpp", ".hxx", ".inc"}) {
    if (endsWith(lower, ending)) return true;
  }
  return endsWith(file.getType(), "Header");
}

ComposedFile compose(PackagedFiles& files, int index, const Composition& composition) {
  const Varn::VarnFile& file = files.file(index);
  placeCustomSections(files, index);
  if (composition.externC && (files.isText(index) || !isHeader(file))) {
    throw pybind11::value_error("extern_c=true is for headers, and it is none");
  }
  if (files.isText(index)) return composeText(files, index);
  if (composition.order) requireAll(file, *composition.order, "its order leaves out");
  return FileWriter(files, index, composition).finish();
}

}  // namespace orv
