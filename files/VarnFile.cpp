#include "varn/VarnFile.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <boost/filesystem/path.hpp>

#include <orbel/Text.hpp>
#include <varn/VarnFileContentCreator.hpp>
#include <varn/detail/UniqueNames.hpp>

namespace Varn {
namespace {

std::unique_ptr<VarnFileContent> buildContent(const std::string& name,
                                              VarnFileContentBuilder* builder) {
  if (builder == nullptr) throw std::invalid_argument("file '" + name + "': no content builder");
  std::unique_ptr<VarnFileContent> content(VarnFileContentCreator::createFileContent(*builder));
  if (!content) throw std::invalid_argument("file '" + name + "': the builder made no content");
  return content;
}

// The stem as boost::filesystem::path has it; but its stem() ends the program when memory runs out
// while it compares the file name with "." and "..".
std::string stemOf(const std::string& name) {
  std::string fileName = boost::filesystem::path(name).filename().string();
  if (fileName != "." && fileName != "..") {
    fileName.erase(std::min(fileName.rfind('.'), fileName.size()));
  }
  return fileName;
}

}  // namespace

struct VarnFile::Attributes {
  std::string codeTemplate;
  std::string outputDirectory;
  detail::UniqueNames systems;
};

VarnFile::VarnFile(const std::string& name, std::unique_ptr<VarnFileContentBuilder> builder)
    : content_(buildContent(name, builder.get())),
      nameAscii_(name),
      baseName_(stemOf(name)),
      nameWithoutExtension_(name, 0, name.rfind('.')),
      customContents_(name) {}

VarnFile::~VarnFile() = default;

std::string VarnFile::getFullyQualifiedKoboTypeName() const { return "Varn.VarnFile"; }

bool VarnFile::isEmpty() const { return !notEmpty_ && content_->isEmpty(); }

void VarnFile::clearContents() {
  notEmpty_ = false;
  content_->clearContents();
}

FileSection& VarnFile::getFileSection(VarnFileSectionKind kind) {
  return content_->getSection(kind);
}

const FileSection& VarnFile::getFileSection(VarnFileSectionKind kind) const {
  return std::as_const(*content_).getSection(kind);
}

bool VarnFile::hasSection(VarnFileSectionKind kind) const { return content_->hasSection(kind); }

void VarnFile::writeSectionToFile(VarnFileSectionKind kind, FILE* stream) {
  if (!hasSection(kind)) return;
  FileSection& section = getFileSection(kind);
  customContents_.appendMissingTokens(section, kind);
  section.writeToFile(stream);
}

const VarnFile::Attributes& VarnFile::attributes() const {
  static const Attributes none;
  return attributes_ ? *attributes_ : none;
}

VarnFile::Attributes& VarnFile::ownAttributes() {
  if (!attributes_) attributes_ = std::make_unique<Attributes>();
  return *attributes_;
}

const std::u16string& VarnFile::getName() const {
  if (!name_) name_ = std::make_unique<std::u16string>(orbel::toUtf16(nameAscii_));
  return *name_;
}

const std::string& VarnFile::getNameAscii() const { return nameAscii_; }
const std::string& VarnFile::getNameWithoutExtension() const { return nameWithoutExtension_; }
const std::string& VarnFile::getBaseName() const { return baseName_; }
void VarnFile::setBaseName(const std::string& baseName) { baseName_ = baseName; }
const std::string& VarnFile::getType() const { return type_; }
void VarnFile::setType(const std::string& type) { type_ = type; }
const std::string& VarnFile::getCreator() const { return creator_; }
void VarnFile::setCreator(const std::string& creator) { creator_ = creator; }
const std::string& VarnFile::getCodeTemplate() const { return attributes().codeTemplate; }
void VarnFile::setCodeTemplate(const std::string& codeTemplate) {
  ownAttributes().codeTemplate = codeTemplate;
}
const std::string& VarnFile::getOutputDirectory() const { return attributes().outputDirectory; }
void VarnFile::setOutputDirectory(const std::string& directory) {
  ownAttributes().outputDirectory = directory;
}
const std::string& VarnFile::getGroup() const { return group_; }
void VarnFile::setGroup(const std::string& group) { group_ = group; }
const std::string& VarnFile::getDefinedMacro() const { return definedMacro_; }
void VarnFile::setDefinedMacro(const std::string& macro) { definedMacro_ = macro; }
const std::vector<std::string>& VarnFile::getSystemsInFile() const {
  return attributes().systems.list();
}
void VarnFile::setSystemsInFile(const std::vector<std::string>& systems) {
  ownAttributes().systems.assign(systems);
}
void VarnFile::addSystemToFile(const std::string& system) { ownAttributes().systems.add(system); }
bool VarnFile::getFiltered() const { return filtered_; }
void VarnFile::setFiltered(bool filtered) { filtered_ = filtered; }
bool VarnFile::isWrittenToDisk() const { return writtenToDisk_; }
void VarnFile::setIsWrittenToDisk(bool written) { writtenToDisk_ = written; }
bool VarnFile::getIndent() const { return indent_; }
void VarnFile::setIndent(bool indent) { indent_ = indent; }
bool VarnFile::isShared() const { return shared_; }
void VarnFile::setIsShared(bool shared) { shared_ = shared; }
bool VarnFile::getSharedType() const { return sharedType_; }
void VarnFile::setSharedType(bool sharedType) { sharedType_ = sharedType; }
bool VarnFile::getDeferredIncludeCoderTypes() const { return deferredIncludeCoderTypes_; }
void VarnFile::setDeferredIncludeCoderTypes(bool deferred) {
  deferredIncludeCoderTypes_ = deferred;
}
void VarnFile::setIsNotEmpty() { notEmpty_ = true; }
FileSection& VarnFile::kobo_getFileSection(VarnFileSectionKind kind) {
  return getFileSection(kind);
}
CustomContents& VarnFile::getCustomContent() { return customContents_; }

}  // namespace Varn
