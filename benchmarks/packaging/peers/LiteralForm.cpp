#include "peers/LiteralForm.hpp"

#include <sstream>
#include <utility>

#include <boost/bind/bind.hpp>

#include <varn/VarnFileSectionKind.hpp>

namespace bench::literal {
namespace {

bool isSystem(const std::string& entry) { return entry.compare(0, 1, "<") == 0; }

std::string lineOf(const std::string& entry) {
  return isSystem(entry) ? "\n#include " + entry + "\n" : "\n#include \"" + entry + "\"\n";
}

void appendUnlessThere(std::string& text, const std::string& entry, const std::string& base) {
  const std::string line = lineOf(entry);
  if (base.find(line) == std::string::npos) text += line;
}

void writeText(const std::string& text, FILE* stream) {
  static_cast<void>(std::fwrite(text.data(), text.size(), 1, stream));
}

std::unique_ptr<Section> makeSection(int kind) {
  if (kind == Varn::INCLUDES_SECTION) return std::make_unique<IncludesSection>();
  if (kind == Varn::FUNCTIONS_SECTION) return std::make_unique<FunctionsSection>();
  return std::make_unique<Section>();
}

}  // namespace

void StringFragment::writeToFile(FILE* stream) const { writeText(getContent(), stream); }

void Section::append(std::string_view text) {
  addFragment(boost::shared_ptr<Fragment>(new StringFragment(text)));
}

void Section::addFragment(boost::shared_ptr<Fragment> fragment) {
  fragments_.push_back(std::move(fragment));
}

const std::string& Section::text() const {
  std::ostringstream whole;
  for (const auto& fragment : fragments_) {
    const std::string& text = fragment->getContent();
    whole.write(text.data(), static_cast<std::streamsize>(text.size()));
  }
  content_ = whole.str();
  return content_;
}

void Section::write(FILE* stream) const {
  for (const auto& fragment : fragments_) fragment->writeToFile(stream);
}

void IncludesSection::setLists(const std::vector<std::string>& required,
                               const std::vector<std::string>& utility) {
  required_ = required;
  requiredNames_.insert(required.begin(), required.end());
  utility_ = utility;
  utilityNames_.insert(utility.begin(), utility.end());
}

const std::string& IncludesSection::text() const {
  const std::string& base = Section::text();
  composed_.clear();
  for (const std::string& entry : required_) appendUnlessThere(composed_, entry, base);
  for (const std::string& entry : utility_) {
    if (isSystem(entry)) appendUnlessThere(composed_, entry, base);
  }
  composed_ += base;
  for (const std::string& entry : utility_) {
    if (!isSystem(entry)) appendUnlessThere(composed_, entry, base);
  }
  return composed_;
}

void IncludesSection::write(FILE* stream) const { writeText(text(), stream); }

File::File(const std::string& fileName)
    : name(fileName.begin(), fileName.end()),
      nameAscii(fileName),
      baseName(fileName, 0, fileName.rfind('.')),
      nameWithoutExtension(baseName) {
  int kind = 0;
  for (auto& section : sections) section = makeSection(kind++);
}

Repository::Repository() {
  using boost::placeholders::_1;
  using boost::placeholders::_2;
  for (int kind = 0; kind < static_cast<int>(File::kindCount); ++kind) {
    const std::string name =
        Varn::getOrvSectionNameFromEnum(static_cast<Varn::VarnFileSectionKind>(kind));
    if (name.empty()) continue;
    adders_[name] = boost::bind(&Repository::addContent, _1, _2, kind);
    writers_[name] = boost::bind(&Repository::writeSection, _1, _2, kind);
  }
}

void Repository::createFile(const std::string& name) {
  filesByName_[name] = files_.size();
  files_.push_back(std::make_unique<File>(name));
}

void Repository::add(std::size_t file, const std::string& section, const char* text) {
  adders_.at(section)(*files_.at(file), boost::shared_ptr<Fragment>(new StringFragment(text)));
}

void Repository::write(std::size_t file, const std::string& section, FILE* stream) {
  writers_.at(section)(*files_.at(file), stream);
}

void Repository::addContent(File& file, const boost::shared_ptr<Fragment>& fragment, int kind) {
  file.sections.at(static_cast<std::size_t>(kind))->addFragment(fragment);
}

void Repository::writeSection(File& file, FILE* stream, int kind) {
  Section& section = *file.sections.at(static_cast<std::size_t>(kind));
  const auto custom = file.customSections.find(kind);
  if (custom != file.customSections.end()) {
    for (const auto& added : custom->second) section.append(added->text());
  }
  section.write(stream);
}

}  // namespace bench::literal
