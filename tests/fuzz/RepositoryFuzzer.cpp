// Drives the public interface of the library with operations read from an input, beside a plain
// model of it: lists of strings. Results, errors and bytes have to be the same.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>

#include <varn/varn_filepackaging.hpp>

#include "fuzz/Input.hpp"
#include "support/Streams.hpp"

namespace Varn {
namespace {

using Texts = std::vector<std::string>;

std::string untilNul(const std::string& text) { return text.substr(0, text.find('\0')); }

std::string join(const Texts& texts) {
  std::string whole;
  for (const std::string& text : texts) whole += text;
  return whole;
}

bool addUnlessPresent(Texts& list, const std::string& text) {
  if (std::find(list.begin(), list.end(), text) != list.end()) return false;
  list.push_back(text);
  return true;
}

// What is known of a custom section.
struct PlainCustom {
  std::string name;
  int builtin = 0;
  std::string text;
  bool isRetrieved = false;
};

struct PlainFile {
  std::string name;
  std::map<int, Texts> sections;  // those that the file has
  std::map<std::string, std::string> attributes;
  std::map<std::string, bool> flags;
  std::map<std::string, Texts> lists;
  Texts addedIncludes;
  std::vector<PlainCustom> custom;
  std::set<std::string> tokens;

  PlainCustom* findCustom(const std::string& wanted) {
    const auto found = std::find_if(custom.begin(), custom.end(),
                                    [&](const auto& section) { return section.name == wanted; });
    return found == custom.end() ? nullptr : &*found;
  }

  void appendMissing(int kind) {
    for (PlainCustom& section : custom) {
      if (section.builtin != kind || kind == DOCUMENTATION_SECTION || section.isRetrieved ||
          tokens.count(section.name) != 0) {
        continue;
      }
      section.isRetrieved = true;
      if (sections.count(kind) != 0) sections[kind].push_back(untilNul(section.text));
    }
  }

  std::string contentOf(int kind) {
    const auto found = sections.find(kind);
    if (found == sections.end()) return {};
    const std::string base = join(found->second);
    return kind == INCLUDES_SECTION ? withLists(base) : base;
  }

  std::string withLists(const std::string& base) {
    std::string before;
    std::string after;
    const auto add = [&base](std::string& to, const std::string& entry, bool isSystem) {
      const std::string line = "\n#include " + (isSystem ? entry : '"' + entry + '"') + "\n";
      if (base.find(line) == std::string::npos) to += line;
    };
    const auto isSystem = [](const std::string& entry) { return entry.substr(0, 1) == "<"; };
    for (const std::string& entry : lists["RequiredIncludes"]) {
      if (!entry.empty()) add(before, entry, isSystem(entry));
    }
    for (const std::string& entry : lists["UtilityIncludes"]) {
      if (!entry.empty()) add(isSystem(entry) ? before : after, entry, isSystem(entry));
    }
    return before + base + after;
  }
};

// The names that an input chooses from; some are of nothing.
const Texts sectionNames = [] {
  Texts names;
  for (int kind = 0; kind <= USERBOTTOM_SECTION; ++kind) {
    names.push_back(getOrvSectionNameFromEnum(static_cast<VarnFileSectionKind>(kind)));
  }
  names.insert(names.end(), {"functions", "Types", "Shared"});
  return names;
}();

int kindOf(const std::string& name) {
  const auto end = sectionNames.begin() + USERBOTTOM_SECTION + 1;
  const auto found = std::find(sectionNames.begin(), end, name);
  return found == end || name.empty() ? -1 : static_cast<int>(found - sectionNames.begin());
}

class Run {
 public:
  explicit Run(fuzz::Input input) : input_(input) {}

  void execute() {
    using Operation = void (Run::*)();
    static constexpr Operation operations[] = {
        &Run::addText,      &Run::addText,      &Run::addFragment, &Run::clear,
        &Run::setAttribute, &Run::setFlag,      &Run::addToList,   &Run::declareCustom,
        &Run::fillCustom,   &Run::retrieve,     &Run::useToken,    &Run::append,
        &Run::write,        &Run::read,         &Run::addFunction, &Run::addInclude,
        &Run::makeFile,     &Run::registerName, &Run::find,        &Run::clone,
        &Run::setLists,     &Run::copyContents};
    makeFile();
    while (!input_.isEmpty()) {
      chooseFile();
      (this->*operations[input_.choice(std::size(operations))])();
    }
    for (index_ = 0; index_ < static_cast<int>(files_.size()); ++index_) compareAll();
  }

 private:
  // The text that `call` gives, or the identifier of its error.
  template <class Call>
  static std::string answerOf(Call call) {
    try {
      return call();
    } catch (const orbel::HostException& error) {
      return "error " + error.identifier();
    }
  }

  void expect(const std::string& expected, const std::string& actual, const char* what) const {
    if (expected == actual) return;
    std::fprintf(stderr, "%s of file %d: expected %zu bytes \"%.300s\", got %zu bytes \"%.300s\"\n",
                 what, index_, expected.size(), expected.c_str(), actual.size(), actual.c_str());
    std::abort();
  }

  bool isKnown() const { return index_ >= 0 && index_ < static_cast<int>(files_.size()); }
  PlainFile& file() { return files_[static_cast<std::size_t>(index_)]; }
  VarnFile& realFile() { return bridge_.getFileFromIndex(index_); }

  void chooseFile() {
    const auto choice = static_cast<int>(input_.choice(files_.size() + 2));
    index_ = choice - 1;
  }

  std::string sectionName() { return sectionNames[input_.choice(sectionNames.size())]; }

  // Does both sides of an operation on a named section.
  template <class Plain, class Real>
  void onSection(const char* what, Plain plain, Real real) {
    const std::string name = sectionName();
    const int kind = kindOf(name);
    std::string expected;
    if (!isKnown()) {
      expected = "error InvalidFileIndex";
    } else if (kind < 0) {
      expected = "error InvalidFileAttribute";
    } else {
      expected = plain(kind);
    }
    expect(expected, answerOf([&] { return real(name); }), what);
  }

  void addTo(int kind, const std::string& text) {
    const auto found = file().sections.find(kind);
    if (found != file().sections.end()) found->second.push_back(text);
  }

  void addText() {
    const std::string text = input_.text();
    onSection(
        "text",
        [&](int kind) {
          addTo(kind, untilNul(text));
          return std::string();
        },
        [&](const std::string& name) {
          bridge_.addSectionContent(index_, name, text.c_str());
          return std::string();
        });
  }

  void addFragment() {
    const std::string text = input_.text();
    onSection(
        "fragment",
        [&](int kind) {
          addTo(kind, text);
          return std::string();
        },
        [&](const std::string& name) {
          bridge_.addSectionContent(index_, name,
                                    boost::make_shared<StringFileSectionFragment>(text));
          return std::string();
        });
  }

  void clear() {
    onSection(
        "clearing",
        [&](int kind) {
          if (file().sections.count(kind) != 0) file().sections[kind].clear();
          return std::string();
        },
        [&](const std::string& name) {
          bridge_.clearSection(index_, name);
          return std::string();
        });
  }

  void append() {
    onSection(
        "appending",
        [&](int kind) {
          file().appendMissing(kind);
          return std::string();
        },
        [&](const std::string& name) {
          bridge_.appendMissingTokens(index_, name);
          return std::string();
        });
  }

  void write() {
    onSection(
        "writing",
        [&](int kind) {
          if (file().sections.count(kind) != 0) file().appendMissing(kind);
          return file().contentOf(kind);
        },
        [&](const std::string& name) {
          return bytesOf([&](FILE* stream) { bridge_.writeSection(index_, name, stream); });
        });
  }

  void read() {
    onSection(
        "reading", [&](int kind) { return untilNul(file().contentOf(kind)); },
        [&](const std::string& name) {
          return std::string(bridge_.getStringAttribute(index_, name));
        });
  }

  void setAttribute() {
    static const Texts names{
        "Type",     "Creator", "CodeTemplate", "OutputDirectory", "Group", "DefinedMacro",
        "BaseName", "Name",    "Banner",       "Shared",          ""};
    const std::size_t choice = input_.choice(names.size());
    const std::string& name = names[choice];
    const std::string value = untilNul(input_.text());
    std::string expected = value;
    if (!isKnown()) {
      expected = "error InvalidFileIndex";
    } else if (choice > 6) {
      expected = "error InvalidFileAttribute";
    } else {
      std::string& kept = file().attributes[name];
      if (name != "Group" || kept.empty()) kept = value;
      expected = kept;
    }
    expect(expected, answerOf([&] {
             bridge_.setAttribute(index_, name, value.c_str());
             return std::string(bridge_.getStringAttribute(index_, name));
           }),
           "attribute");
  }

  void setFlag() {
    static const Texts names{"Filter", "WrittenToDisk", "Indent",
                             "Shared", "SharedType",    "DeferredIncludeCoderTypes",
                             "Type",   "filter"};
    const std::size_t choice = input_.choice(names.size());
    const bool value = input_.flag();
    std::string expected = value ? "true" : "false";
    if (!isKnown()) {
      expected = "error InvalidFileIndex";
    } else if (choice > 5) {
      expected = "error InvalidFileAttribute";
    } else {
      file().flags[names[choice]] = value;
    }
    expect(expected, answerOf([&] {
             bridge_.setAttribute(index_, names[choice], value);
             return bridge_.getBooleanAttribute(index_, names[choice]) ? "true" : "false";
           }),
           "flag");
  }

  void addToList() {
    static const Texts names{"SystemsInFile", "RequiredIncludes", "UtilityIncludes"};
    const std::string& name = names[input_.choice(names.size())];
    const std::string value = untilNul(input_.text());
    if (!isKnown()) return;
    addUnlessPresent(file().lists[name], value);
    bridge_.setAttribute(index_, name, value.c_str());
  }

  void setLists() {
    const Texts values{input_.text(), input_.text()};
    if (!isKnown()) return;
    auto& includes = dynamic_cast<IncludesSection&>(realFile().getFileSection(INCLUDES_SECTION));
    includes.setRequiredIncludes(values);
    includes.setUtilityIncludes({});
    realFile().setSystemsInFile(values);
    file().lists = {{"RequiredIncludes", values}, {"SystemsInFile", values}};
  }

  std::string customName() { return std::string(1, static_cast<char>('A' + input_.choice(5))); }

  void declareCustom() {
    const std::string name = customName();
    const std::string builtin = sectionName();
    const int kind = builtin == "Types" ? TYPEDEFS_SECTION : kindOf(builtin);
    std::string expected;
    if (!isKnown()) {
      expected = "error InvalidFileIndex";
    } else if (kind < 0) {
      expected = "error CustomContentInvalidBuiltin";
    } else if (const PlainCustom* known = file().findCustom(name)) {
      if (known->builtin != kind) expected = "error CustomContentPreviousAssociation";
    } else {
      file().custom.push_back({name, kind, "", false});
    }
    expect(expected, answerOf([&] {
             bridge_.addCustomSection(index_, builtin, name);
             return std::string();
           }),
           "custom section");
  }

  void fillCustom() {
    const std::string name = customName();
    const std::string text = input_.text();
    if (!isKnown()) return;
    PlainCustom* known = file().findCustom(name);
    if (known != nullptr) known->text += untilNul(text);
    expect(known != nullptr ? "" : "error CustomContentSectionDoesNotExist", answerOf([&] {
             realFile().getCustomContent().addContentToSection(name, text);
             return std::string();
           }),
           "custom text");
  }

  void retrieve() {
    const std::string name = customName();
    if (!isKnown()) return;
    std::string expected;
    if (PlainCustom* known = file().findCustom(name)) {
      expected = known->isRetrieved ? "error CustomContentSectionAlreadyRetrieved" : known->text;
      known->isRetrieved = true;
    }
    expect(expected, answerOf([&] {
             return realFile().getCustomContent().getCustomSectionContent(name, "fuzzer");
           }),
           "retrieval");
  }

  void useToken() {
    const std::string name = customName();
    if (!isKnown()) return;
    file().tokens.insert(name);
    realFile().getCustomContent().setCustomTokenInUse(name);
  }

  void copyContents() {
    if (!isKnown()) return;
    CustomContents& contents = realFile().getCustomContent();
    CustomContents copy(contents);
    copy.setCustomTokenInUse("E");
    contents = CustomContents(contents);
  }

  void addFunction() {
    const std::string name = input_.text();
    const std::string body = input_.text();
    if (!isKnown() || file().sections.count(FUNCTIONS_SECTION) == 0) return;
    auto& functions = dynamic_cast<FunctionsSection&>(realFile().getFileSection(FUNCTIONS_SECTION));
    functions.addFunction(name, body);
    Texts& bodies = file().sections[FUNCTIONS_SECTION];
    bodies.push_back(untilNul(body));
    expect(std::to_string(bodies.size()), std::to_string(functions.getNumberOfFunctions()),
           "number of functions");
    const std::size_t position = input_.choice(bodies.size());
    expect(bodies[position], functions.getFunction(static_cast<unsigned int>(position)),
           "function");
    expect(name, functions.getFunctionName(functions.getNumberOfFunctionNames() - 1), "name");
  }

  void addInclude() {
    const std::string name = input_.text();
    const bool isSystem = input_.flag();
    if (!isKnown()) return;
    auto& includes = dynamic_cast<IncludesSection&>(realFile().getFileSection(INCLUDES_SECTION));
    includes.addInclude(name, isSystem);
    if (!addUnlessPresent(file().addedIncludes, name)) return;
    addTo(INCLUDES_SECTION,
          untilNul(isSystem ? "#include <" + name + ">\n" : "#include \"" + name + "\"\n"));
  }

  void makeFile() {
    const std::size_t kind = input_.choice(4);
    const std::string name = input_.text();
    VarnFile* made = nullptr;
    if (kind == 0) made = &repository_.createGenericFile(name);
    if (kind == 1) made = &repository_.createDataTypesFile(name);
    if (kind == 2) made = &repository_.createModuleHeaderFile(name, {1, 2});
    if (kind == 3) made = &repository_.createModuleSourceFile(name, {2});
    files_.emplace_back();
    index_ = static_cast<int>(files_.size()) - 1;
    file().name = name;
    file().attributes["BaseName"] = made->getBaseName();
    for (int section = 0; section <= USERBOTTOM_SECTION; ++section) {
      if (made->hasSection(static_cast<VarnFileSectionKind>(section))) file().sections[section];
    }
    if (kind == 2) headers_[1] = headers_[2] = made;
  }

  void registerName() {
    const std::string name = input_.text();
    std::string lowered = name;
    for (char& each : lowered)
      each = each >= 'A' && each <= 'Z' ? static_cast<char>(each + 32) : each;
    const auto [entry, isNew] = registered_.emplace(lowered, name);
    FileRepErrorStatus status;
    std::string spelling = entry->second;
    if (input_.flag()) {
      repository_.checkForDuplicateEntry(name, &status);
      expect(isNew ? "new" : "old", status.hadError() ? "old" : "new", "registration");
    } else {
      expect(isNew ? "new" : "old",
             repository_.findDuplicateFileEntry(name, spelling) ? "new" : "old", "registration");
    }
    expect(entry->second, spelling, "spelling");
  }

  void find() {
    const std::string name = input_.text();
    int last = -1;
    for (std::size_t i = 0; i < files_.size(); ++i) {
      if (files_[i].name == name) last = static_cast<int>(i);
    }
    expect(std::to_string(last), std::to_string(repository_.findFileIndexByName(name)), "index");
    for (int i = 0; i < 4; ++i) {
      const auto found = headers_.find(i);
      if ((found == headers_.end() ? nullptr : found->second) !=
          repository_.getModuleHeaderFileByIndex(i)) {
        expect("the file", "another", "module header");
      }
    }
  }

  // A clone shares the text at the time, and nothing that comes later.
  void clone() {
    const auto kind = static_cast<VarnFileSectionKind>(input_.choice(USERBOTTOM_SECTION + 1));
    const std::string text = input_.text();
    if (!isKnown()) return;
    const std::unique_ptr<FileSection> copy(realFile().getFileSection(kind).clone());
    const std::string before = file().contentOf(kind);
    expect(before, copy->getContent(), "clone");
    if (file().sections.count(kind) == 0) return;
    realFile().getFileSection(kind).addContent(text);
    addTo(kind, untilNul(text));
    copy->addContent("of the clone");
    copy->clearContent();
  }

  void compareAll() {
    for (int kind = 0; kind <= USERBOTTOM_SECTION; ++kind) {
      const FileSection& section =
          realFile().getFileSection(static_cast<VarnFileSectionKind>(kind));
      expect(file().contentOf(kind), section.getContent(), "content");
      expect(file().contentOf(kind), bytesOf([&](FILE* stream) { section.writeToFile(stream); }),
             "bytes");
    }
    for (const auto& [name, value] : file().attributes) {
      expect(value, bridge_.getStringAttribute(index_, name), name.c_str());
    }
    for (const auto& [name, value] : file().flags) {
      expect(value ? "true" : "false", bridge_.getBooleanAttribute(index_, name) ? "true" : "false",
             name.c_str());
    }
    for (const auto& [name, value] : file().lists) {
      expect(join(value), join(bridge_.getStringArrayAttribute(index_, name)), name.c_str());
    }
  }

  fuzz::Input input_;
  VarnFileRepository repository_;
  FileRepOrvBridge& bridge_ = repository_.orvBridge();
  std::vector<PlainFile> files_;
  std::map<std::string, std::string> registered_;
  std::map<int, VarnFile*> headers_;
  int index_ = 0;
};

}  // namespace
}  // namespace Varn

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Varn::Run(fuzz::Input(data, size)).execute();
  return 0;
}
