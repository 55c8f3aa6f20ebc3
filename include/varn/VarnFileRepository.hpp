#ifndef VARN_VARNFILEREPOSITORY_HPP
#define VARN_VARNFILEREPOSITORY_HPP

#include <memory>
#include <string>
#include <vector>

#include <orbel/HandleBase.hpp>
#include <varn/Export.hpp>
#include <varn/FileRepErrorStatus.hpp>
#include <varn/FileType.hpp>
#include <varn/VarnDataTypesFile.hpp>
#include <varn/VarnFile.hpp>
#include <varn/VarnGenericFile.hpp>
#include <varn/VarnModuleFile.hpp>

namespace Varn {

class FileRepOrvBridge;

// All files generated for one model, in memory. It makes and owns every file. One repository serves
// one code-generation run.
//
// A file's index is its position in the order of creation and never changes. The cost of a call
// does not depend on the number of files.
//
// The memory of short texts that are cleared is reused by the sections of the repository and freed
// with it.
class VARN_EXPORT VarnFileRepository : public orbel::HandleBase {
 public:
  VarnFileRepository();
  // The bridge and handles refer to this object: it is neither copied nor moved.
  VarnFileRepository(const VarnFileRepository&) = delete;
  VarnFileRepository& operator=(const VarnFileRepository&) = delete;
  ~VarnFileRepository() override;

  std::string getFullyQualifiedKoboTypeName() const override;

  // Make a file. No name is refused: a second file of the same name hides the first from look-ups
  // by name, and both stay in the list. See checkForDuplicateEntry(). References are valid until
  // the repository is destroyed. A failed call makes no file.
  VarnGenericFile& createGenericFile(const std::string& name);
  VarnDataTypesFile& createDataTypesFile(const std::string& name);

  // A generic file of Type "SystemHeader" and Creator "Plexar".
  VarnGenericFile& createModelFile(const std::string& name);
  // The model file under the table's name for ModelHeaderFile, or ModelTypesFile, and ".h".
  VarnGenericFile& createModelHeaderFile();
  VarnGenericFile& createModelTypesFile();

  // A module file under each of `indices`, replacing the file that an index had before. Headers and
  // sources have separate indices.
  VarnModuleFile& createModuleHeaderFile(const std::string& name, const std::vector<int>& indices);
  VarnModuleFile& createModuleSourceFile(const std::string& name, const std::vector<int>& indices);
  // Null for an index without a file.
  VarnModuleFile* getModuleHeaderFileByIndex(int index) const;
  VarnModuleFile* getModuleSourceFileByIndex(int index) const;

  // The file last made under exactly `name`: null, or -1 for its index, when there is none.
  VarnFile* findFileByName(const std::string& name) const;
  int findFileIndexByName(const std::string& name) const;

  // Registers `name` unless a name that is equal but for letter case is registered. If one is,
  // `status`, unless null, becomes a warning whose message names both, each line marked "-->".
  // Nothing is refused. Letters are folded by the C library's locale and the global C++ locale, so
  // that in the classic locale only ASCII letters are.
  void checkForDuplicateEntry(const std::string& name, FileRepErrorStatus* status);

  // Registers `name` likewise and puts the registered spelling into `registeredName`. True when the
  // name was new.
  bool findDuplicateFileEntry(const std::string& name, std::string& registeredName);

  // The files in the order of creation, owned by the repository.
  const std::vector<VarnFile*>& getFileList() const;
  // A copy of the list, for host scripts.
  std::vector<VarnFile*> getFileList_kobo() const;

  void setModelName(const std::string& name);
  std::string getModelName() const;

  // The names of the model's well-known files; see VarnFileNameTable.
  void addFileNameToTable(FileType type, const std::string& name);
  void addFileNameToTable(const std::string& typeName, const std::string& name);
  const std::string& getFileNameFromTable(FileType type) const;
  const std::string& getFileNameFromTable(const std::string& typeName) const;

  // The bridge through which the template engine addresses the files by index, owned by the
  // repository.
  FileRepOrvBridge& orvBridge();

 private:
  struct State;

  std::unique_ptr<State> state_;
};

}  // namespace Varn

#endif
