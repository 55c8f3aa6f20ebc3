#include "GenerationRun.hpp"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "FileNames.hpp"
#include "PendingFile.hpp"
#include "ProtocolError.hpp"
#include "ProtocolFiles.hpp"

namespace wayland {
namespace {

constexpr const char* reportPath = "standard output";

void makeFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw std::system_error(error, folder);
}

std::vector<std::unique_ptr<ProtocolFile>> makeFiles(Varn::VarnFileRepository& repository,
                                                     const Protocol& protocol, Modules modules) {
  std::vector<std::unique_ptr<ProtocolFile>> files;
  files.push_back(makeEnumerationsHeader(repository, protocol));
  files.push_back(makeClientHeader(repository, protocol, modules));
  files.push_back(makeServerHeader(repository, protocol, modules));
  files.push_back(makeMarshallingCode(repository, protocol, modules));
  files.push_back(makeUmbrellaHeader(repository, protocol, modules));
  return files;
}

void walk(const Protocol& protocol, const std::vector<std::unique_ptr<ProtocolFile>>& files) {
  const ProtocolText text = commonText(protocol);
  for (const auto& file : files) file->begin(protocol, text);
  for (const Interface& interface : protocol.interfaces) {
    const SharedText documentation = interfaceDocumentation(interface);
    for (const auto& file : files) file->addInterface(interface, documentation);
  }
  for (const auto& file : files) file->finish(protocol);
}

}  // namespace

// The packaging manager's model header has no name, so it is no file for the disk: it is the
// run's report. It must be the first file, for the manager answers the index of the last one.
GenerationRun::GenerationRun(const std::string& folder)
    : folder_(folder),
      manager_(&repository_),
      report_(repository_,
              static_cast<int>(manager_.orvBridge().getFileRecIndexForKey("mdl_hdr"))) {}

std::vector<std::string> GenerationRun::add(const Protocol& protocol) {
  for (const std::string& name : fileNames(protocol)) {
    const int index = repository_.findFileIndexByName(name);
    if (index >= 0) {
      throw ProtocolError(protocol.file, protocol.line,
                          fmt::format("its file '{}' would replace that of protocol '{}'", name,
                                      repository_.orvBridge().getStringAttribute(index, "Group")));
    }
  }
  const Modules modules = {2 * protocols_, 2 * protocols_ + 1};
  ++protocols_;
  std::vector<std::unique_ptr<ProtocolFile>> files = makeFiles(repository_, protocol, modules);
  std::vector<std::string> warnings;
  for (const auto& file : files) {
    file->file().setAttribute("OutputDirectory", folder_);
    Varn::FileRepErrorStatus status;
    repository_.checkForDuplicateEntry(file->file().name(), &status);
    if (status.hadError()) warnings.push_back(status.getMessage());
  }
  walk(protocol, files);
  std::move(files.begin(), files.end(), std::back_inserter(files_));
  return warnings;
}

void GenerationRun::write() {
  makeFolder(folder_);
  std::vector<PendingFile> pending;
  sizes_.clear();
  for (const auto& file : files_) {
    PendingFile& next = pending.emplace_back(folder_, file->file().name());
    sizes_.push_back(file->file().write(next.stream(), next.path()));
    next.close();
  }
  for (std::size_t i = 0; i < pending.size(); ++i) {
    pending[i].commit();
    files_[i]->file().setWrittenToDisk();
  }
}

void GenerationRun::report(FILE* stream) {
  std::size_t width = 0;
  for (const auto& file : files_) width = std::max(width, file->file().name().size());
  report_.add("Banner", fmt::format("{:<{}}  sections     bytes\n", "file", width));
  WrittenSize total;
  for (std::size_t i = 0; i < sizes_.size(); ++i) {
    report_.add("Documentation", fmt::format("{:<{}}  {:>8}  {:>8}\n", files_[i]->file().name(),
                                             width, sizes_[i].sections, sizes_[i].bytes));
    total.sections += sizes_[i].sections;
    total.bytes += sizes_[i].bytes;
  }
  report_.add("UserBottom",
              fmt::format("{:<{}}  {:>8}  {:>8}\n", fmt::format("{} files", sizes_.size()), width,
                          total.sections, total.bytes));
  report_.write(stream, reportPath);
  if (std::fflush(stream) != 0) throw std::system_error(errno, std::generic_category(), reportPath);
}

}  // namespace wayland
