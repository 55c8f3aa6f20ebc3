#include "python/orv/native/output/Composer.hpp"

#include <algorithm>
#include <cstdio>
#include <new>
#include <string>

#include <pybind11/pybind11.h>

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

// A stream that writes to memory.
class MemoryStream {
 public:
  MemoryStream() : stream_(open_memstream(&characters_, &size_)) {
    if (stream_ == nullptr) throw std::bad_alloc();
  }
  MemoryStream(const MemoryStream&) = delete;
  MemoryStream& operator=(const MemoryStream&) = delete;
  ~MemoryStream() {
    if (stream_ != nullptr) std::fclose(stream_);
    std::free(characters_);
  }

  FILE* stream() { return stream_; }
  MemoryStream& write(std::string_view text) {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stream_));
    return *this;
  }
  // Everything written so far, valid until more is written.
  std::string_view written() {
    if (std::fflush(stream_) != 0) throw std::bad_alloc();
    return {characters_, size_};
  }
  ComposedFile finish(std::vector<ComposedFile::Section> sections, Guard guard) {
    if (std::fclose(std::exchange(stream_, nullptr)) != 0) throw std::bad_alloc();
    return {std::exchange(characters_, nullptr), size_, std::move(sections), std::move(guard)};
  }

 private:
  char* characters_ = nullptr;
  std::size_t size_ = 0;
  FILE* stream_;
};

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
  MemoryStream memory;
  writeSection(files, index, textKind, memory.stream());
  const std::size_t size = memory.written().size();
  return memory.finish({{textSection, size}}, {});
}

bool endsWithBlankLine(std::string_view text) { return text.empty() || endsWith(text, "\n\n"); }

// Whether the text of an includes section is written without the blank line that it begins with,
// which sets it apart from what comes before.
bool dropsBlankLine(std::string_view written, std::string_view text, bool blankLines) {
  return !text.empty() && text[0] == '\n' &&
         (written.empty() || (blankLines && endsWithBlankLine(written)));
}

// Writes the sections of one file and what stands around them.
class FileWriter {
 public:
  FileWriter(PackagedFiles& files, int index, const Composition& composition)
      : files_(files),
        index_(index),
        file_(files.file(index)),
        composition_(composition),
        guard_(guardOf(file_, composition)) {}

  ComposedFile finish() {
    const SectionOrder& order = composition_.order ? *composition_.order
                                : isHeader(file_)  ? headerOrder
                                                   : sourceOrder();
    for (const VarnFileSectionKind kind : order) {
      if (kind != Varn::BANNER_SECTION) openGuard();
      if (!hasText(kind)) continue;
      setExternC(composition_.externC && isExternC(kind));
      const std::size_t size = writeLines(kind);
      if (size != 0) sections_.push_back({static_cast<int>(kind), size});
    }
    setExternC(false);
    if (isGuardOpen_) memory_.write(guard_.closing());
    return memory_.finish(std::move(sections_), std::move(guard_));
  }

 private:
  // The includes section counts as empty while it has nothing but required or utility includes.
  bool hasText(VarnFileSectionKind kind) const {
    if (!file_.hasSection(kind)) return false;
    const Varn::FileSection& section = file_.getFileSection(kind);
    return kind == Varn::INCLUDES_SECTION ? !section.getContent().empty() : !section.isEmpty();
  }

  void separate() {
    if (!endsWithBlankLine(memory_.written())) memory_.write("\n");
  }

  void openGuard() {
    if (isGuardOpen_ || !guard_.exists()) return;
    if (composition_.blankLines) separate();
    memory_.write(guard_.opening());
    isGuardOpen_ = true;
  }

  void setExternC(bool isWanted) {
    if (isWanted == isExternCOpen_) return;
    separate();
    memory_.write("#ifdef __cplusplus\n").write(isWanted ? "extern \"C\" {" : "}");
    memory_.write(isWanted ? "\n#endif\n\n" : "\n#endif\n");
    isExternCOpen_ = isWanted;
  }

  // Returns the number of bytes of the section.
  std::size_t writeLines(VarnFileSectionKind kind) {
    const Varn::FileSection& section = file_.getFileSection(kind);
    if (composition_.blankLines) {
      const std::string& text = section.getContent();
      if (!text.empty() && text[0] != '\n') separate();
    }
    const std::size_t before = memory_.written().size();
    if (kind == Varn::INCLUDES_SECTION) {
      std::string_view text = section.getContent();
      if (dropsBlankLine(memory_.written(), text, composition_.blankLines)) text.remove_prefix(1);
      memory_.write(text);
    } else {
      writeSection(files_, index_, kind, memory_.stream());
    }
    const std::string_view written = memory_.written();
    const std::size_t size = written.size() - before;
    if (size != 0 && written.back() != '\n') memory_.write("\n");
    return size;
  }

  PackagedFiles& files_;
  int index_;
  Varn::VarnFile& file_;
  const Composition& composition_;
  Guard guard_;
  MemoryStream memory_;
  std::vector<ComposedFile::Section> sections_;
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
