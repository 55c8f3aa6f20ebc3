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

// All files generated for one model, in memory. It makes and owns every file, and with it goes
// everything in them. One repository serves one code-generation run, driven by one thread at a
// time.
//
// A file's index is its position in the order of creation and never changes. The cost of a call
// does not depend on the number of files.
//
// The memory of short texts that are cleared serves the other sections of the repository, and is
// given back with it.
class VARN_EXPORT VarnFileRepository : public orbel::HandleBase {
 public:
  VarnFileRepository();
  // Files, indices and the bridge refer to this very object: it is neither copied nor moved.
  VarnFileRepository(const VarnFileRepository&) = delete;
  VarnFileRepository& operator=(const VarnFileRepository&) = delete;
  ~VarnFileRepository() override;

  std::string getFullyQualifiedKoboTypeName() const override;

  // Make a file. No name is refused: a file of a name that is there already hides the earlier one
  // from look-ups by name, and both stay in the list. See checkForDuplicateEntry(). References are
  // good as long as the repository lives; when a call fails there is no new file.
  VarnGenericFile& createGenericFile(const std::string& name);
  VarnDataTypesFile& createDataTypesFile(const std::string& name);

  // A generic file of Type "SystemHeader" and Creator "Plexar".
  VarnGenericFile& createModelFile(const std::string& name);
  // The model file under the table's name for ModelHeaderFile, or ModelTypesFile, and ".h".
  VarnGenericFile& createModelHeaderFile();
  VarnGenericFile& createModelTypesFile();

  // A module file that each of `indices` reaches from now on, in place of the file that it reached
  // before. Headers and sources have indices of their own.
  VarnModuleFile& createModuleHeaderFile(const std::string& name, const std::vector<int>& indices);
  VarnModuleFile& createModuleSourceFile(const std::string& name, const std::vector<int>& indices);
  // Null for an index that reaches no file.
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

  // The files in the order of creation; they stay the repository's.
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

  // The bridge through which the template engine addresses the files by index. It belongs to the
  // repository.
  FileRepOrvBridge& orvBridge();

 private:
  struct State;

  std::unique_ptr<State> state_;
};

}  // namespace Varn

#endif
