#include <algorithm>
#include <stdexcept>
#include <utility>

#include <boost/filesystem/path.hpp>

#include <orbel/Text.hpp>
#include <varn/VarnFile.hpp>
#include <varn/VarnFileContentCreator.hpp>

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
  if (fileName != "." && fileName != "..")
    fileName.erase(std::min(fileName.rfind('.'), fileName.size()));
  return fileName;
}

}  // namespace

VarnFile::VarnFile(const std::string& name, std::unique_ptr<VarnFileContentBuilder> builder)
    : content_(buildContent(name, builder.get())),
      name_(orbel::toUtf16(name)),
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

}  // namespace Varn
