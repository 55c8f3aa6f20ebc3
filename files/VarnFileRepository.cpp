#include "varn/VarnFileRepository.hpp"

#include <boost/unordered_map.hpp>

#include <varn/FileRepOrvBridge.hpp>
#include <varn/VarnFileNameTable.hpp>

#include "files/RegisteredNames.hpp"
#include "host/diagnostics/Diagnostics.hpp"
#include "sections/TextPool.hpp"

namespace Varn {
namespace {

// Deletes the files in the order of creation.
class OwnedFiles {
 public:
  OwnedFiles() = default;
  OwnedFiles(const OwnedFiles&) = delete;
  OwnedFiles& operator=(const OwnedFiles&) = delete;
  ~OwnedFiles() {
    for (const VarnFile* file : list_) delete file;
  }

  const std::vector<VarnFile*>& list() const { return list_; }

  void add(std::unique_ptr<VarnFile> file) {
    list_.push_back(file.get());
    static_cast<void>(file.release());
  }
  void removeLast() {
    delete list_.back();
    list_.pop_back();
  }

 private:
  std::vector<VarnFile*> list_;
};

using ModuleFiles = boost::unordered_map<int, VarnModuleFile*>;

// Inserts an entry for each of some indices, so that assigning them cannot fail; the destructor
// erases the new entries unless keep() was called.
class ReservedIndices {
 public:
  ReservedIndices(ModuleFiles& map, const std::vector<int>& indices) : map_(map) {
    added_.reserve(indices.size());
    try {
      for (const int index : indices) {
        if (map_.emplace(index, nullptr).second) added_.push_back(index);
      }
    } catch (...) {
      undo();
      throw;
    }
  }
  ReservedIndices(const ReservedIndices&) = delete;
  ReservedIndices& operator=(const ReservedIndices&) = delete;
  ~ReservedIndices() { undo(); }

  void keep() { added_.clear(); }

 private:
  void undo() {
    for (const int index : added_) map_.erase(index);
  }

  ModuleFiles& map_;
  std::vector<int> added_;
};

VarnModuleFile* findModuleFile(const ModuleFiles& map, int index) {
  const auto found = map.find(index);
  return found != map.end() ? found->second : nullptr;
}

}  // namespace

struct VarnFileRepository::State {
  explicit State(VarnFileRepository& repository) : bridge(repository) {}

  static VarnFileContent& contentOf(VarnFile& file) { return *file.content_; }

  // Destroyed in reverse: the files first.
  RegisteredNames registeredNames;
  boost::unordered_map<std::string, int> nameIndex;
  ModuleFiles moduleSourceFiles;
  ModuleFiles moduleHeaderFiles;
  FileRepOrvBridge bridge;
  std::string modelName;
  VarnFileNameTable nameTable;
  detail::TextPool pool;
  OwnedFiles files;

  template <typename FileClass>
  FileClass& createFile(const std::string& name) {
    // A generator is usually done with a file when it creates the next.
    if (!files.list().empty()) pool.shrinkToFit(contentOf(*files.list().back()));
    auto created = std::make_unique<FileClass>(name);
    FileClass& file = *created;
    const auto index = static_cast<int>(files.list().size());
    pool.serve(contentOf(file));
    files.add(std::move(created));
    try {
      nameIndex[name] = index;
    } catch (...) {
      files.removeLast();
      throw;
    }
    return file;
  }

  VarnModuleFile& createModuleFile(ModuleFiles& map, const std::string& name,
                                   const std::vector<int>& indices) {
    ReservedIndices reserved(map, indices);
    VarnModuleFile& file = createFile<VarnModuleFile>(name);
    for (const int index : indices) map.find(index)->second = &file;
    reserved.keep();
    return file;
  }
};

VarnFileRepository::VarnFileRepository() : state_(std::make_unique<State>(*this)) {}

VarnFileRepository::~VarnFileRepository() = default;

std::string VarnFileRepository::getFullyQualifiedKoboTypeName() const {
  return "Varn.VarnFileRepository";
}

VarnGenericFile& VarnFileRepository::createGenericFile(const std::string& name) {
  return state_->createFile<VarnGenericFile>(name);
}

VarnDataTypesFile& VarnFileRepository::createDataTypesFile(const std::string& name) {
  return state_->createFile<VarnDataTypesFile>(name);
}

VarnGenericFile& VarnFileRepository::createModelFile(const std::string& name) {
  VarnGenericFile& file = createGenericFile(name);
  file.setType("SystemHeader");
  file.setCreator("Plexar");
  return file;
}

VarnGenericFile& VarnFileRepository::createModelHeaderFile() {
  return createModelFile(getFileNameFromTable(ModelHeaderFile) + ".h");
}

VarnGenericFile& VarnFileRepository::createModelTypesFile() {
  return createModelFile(getFileNameFromTable(ModelTypesFile) + ".h");
}

VarnModuleFile& VarnFileRepository::createModuleHeaderFile(const std::string& name,
                                                           const std::vector<int>& indices) {
  return state_->createModuleFile(state_->moduleHeaderFiles, name, indices);
}

VarnModuleFile& VarnFileRepository::createModuleSourceFile(const std::string& name,
                                                           const std::vector<int>& indices) {
  return state_->createModuleFile(state_->moduleSourceFiles, name, indices);
}

VarnModuleFile* VarnFileRepository::getModuleHeaderFileByIndex(int index) const {
  return findModuleFile(state_->moduleHeaderFiles, index);
}

VarnModuleFile* VarnFileRepository::getModuleSourceFileByIndex(int index) const {
  return findModuleFile(state_->moduleSourceFiles, index);
}

VarnFile* VarnFileRepository::findFileByName(const std::string& name) const {
  const int index = findFileIndexByName(name);
  return index < 0 ? nullptr : getFileList()[static_cast<std::size_t>(index)];
}

int VarnFileRepository::findFileIndexByName(const std::string& name) const {
  const auto found = state_->nameIndex.find(name);
  return found != state_->nameIndex.end() ? found->second : -1;
}

void VarnFileRepository::checkForDuplicateEntry(const std::string& name,
                                                FileRepErrorStatus* status) {
  const auto [registered, isNew] = state_->registeredNames.insert(name);
  if (isNew || status == nullptr) return;
  status->setMessage(renderWarning(DuplicateFileEntry(name, *registered)));
  status->setHadError(true);
  status->setIsWarning(true);
}

bool VarnFileRepository::findDuplicateFileEntry(const std::string& name,
                                                std::string& registeredName) {
  const auto [registered, isNew] = state_->registeredNames.insert(name);
  try {
    registeredName = *registered;
  } catch (...) {
    if (isNew) state_->registeredNames.erase(registered);
    throw;
  }
  return isNew;
}

const std::vector<VarnFile*>& VarnFileRepository::getFileList() const {
  return state_->files.list();
}

std::vector<VarnFile*> VarnFileRepository::getFileList_kobo() const { return getFileList(); }

void VarnFileRepository::setModelName(const std::string& name) { state_->modelName = name; }

std::string VarnFileRepository::getModelName() const { return state_->modelName; }

void VarnFileRepository::addFileNameToTable(FileType type, const std::string& name) {
  state_->nameTable.addFileNameToTable(type, name);
}

void VarnFileRepository::addFileNameToTable(const std::string& typeName, const std::string& name) {
  state_->nameTable.addFileNameToTable(typeName, name);
}

const std::string& VarnFileRepository::getFileNameFromTable(FileType type) const {
  return state_->nameTable.getFileNameFromTable(type);
}

const std::string& VarnFileRepository::getFileNameFromTable(const std::string& typeName) const {
  return state_->nameTable.getFileNameFromTable(typeName);
}

FileRepOrvBridge& VarnFileRepository::orvBridge() { return state_->bridge; }

}  // namespace Varn
