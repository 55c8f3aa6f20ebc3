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

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

bool isIdentifier(std::string_view name) {
  const auto isPart = [](char c) { return isLetter(c) || (c >= '0' && c <= '9'); };
  return !name.empty() && isLetter(name[0]) && std::all_of(name.begin(), name.end(), isPart);
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
  ComposedFile finish(std::vector<ComposedFile::Section> sections) {
    if (std::fclose(std::exchange(stream_, nullptr)) != 0) throw std::bad_alloc();
    return {std::exchange(characters_, nullptr), size_, std::move(sections)};
  }

 private:
  char* characters_ = nullptr;
  std::size_t size_ = 0;
  FILE* stream_;
};

std::string guardOf(const Varn::VarnFile& file) {
  if (!isHeader(file)) return {};
  const std::string& macro = file.getDefinedMacro();
  if (macro.empty() || isIdentifier(macro)) return macro;
  throw pybind11::value_error("its DefinedMacro \"" + macro + "\" is no identifier");
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
  return memory.finish({{textSection, size}});
}

bool endsWithBlankLine(std::string_view text) { return text.empty() || endsWith(text, "\n\n"); }

// Whether the text of an includes section is written without the blank line that it begins with,
// which sets it apart from what comes before.
bool dropsBlankLine(std::string_view written, std::string_view text, bool blankLines) {
  return !text.empty() && text[0] == '\n' &&
         (written.empty() || (blankLines && endsWithBlankLine(written)));
}

// Returns the number of bytes of the section.
std::size_t writeLines(PackagedFiles& files, int index, VarnFileSectionKind kind,
                       MemoryStream& memory, bool blankLines) {
  const Varn::FileSection& section = files.file(index).getFileSection(kind);
  if (blankLines) {
    const std::string& text = section.getContent();
    const bool isApart = text.empty() || text[0] == '\n';
    if (!isApart && !endsWithBlankLine(memory.written())) memory.write("\n");
  }
  const std::size_t before = memory.written().size();
  if (kind == Varn::INCLUDES_SECTION) {
    std::string_view text = section.getContent();
    if (dropsBlankLine(memory.written(), text, blankLines)) text.remove_prefix(1);
    memory.write(text);
  } else {
    writeSection(files, index, kind, memory.stream());
  }
  const std::string_view written = memory.written();
  const std::size_t size = written.size() - before;
  if (size != 0 && written.back() != '\n') memory.write("\n");
  return size;
}

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

ComposedFile compose(PackagedFiles& files, int index, const SectionOrder* order, bool blankLines) {
  Varn::VarnFile& file = files.file(index);
  placeCustomSections(files, index);
  if (files.isText(index)) return composeText(files, index);
  const std::string guard = guardOf(file);
  if (order == nullptr) {
    order = isHeader(file) ? &headerOrder : &sourceOrder();
  } else {
    requireAll(file, *order, "its order leaves out");
  }
  MemoryStream memory;
  std::vector<ComposedFile::Section> sections;
  bool isOpen = false;
  for (const VarnFileSectionKind kind : *order) {
    if (!guard.empty() && !isOpen && kind != Varn::BANNER_SECTION) {
      if (blankLines && !endsWithBlankLine(memory.written())) memory.write("\n");
      memory.write("#ifndef ").write(guard).write("\n#define ").write(guard).write("\n\n");
      isOpen = true;
    }
    if (!file.hasSection(kind)) continue;
    // The includes section counts as empty while it has nothing but required or utility includes.
    if (kind != Varn::INCLUDES_SECTION && file.getFileSection(kind).isEmpty()) continue;
    const std::size_t size = writeLines(files, index, kind, memory, blankLines);
    if (size != 0) sections.push_back({static_cast<int>(kind), size});
  }
  if (isOpen) memory.write("\n#endif /* ").write(guard).write(" */\n");
  return memory.finish(std::move(sections));
}

}  // namespace orv
