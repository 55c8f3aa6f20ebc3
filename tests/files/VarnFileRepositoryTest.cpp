#include <gtest/gtest.h>

#include <varn/VarnFileRepository.hpp>

namespace Varn {
namespace {

TEST(VarnFileRepository, ALaterFileHidesAnEarlierOfItsName) {
  VarnFileRepository repository;
  EXPECT_EQ(-1, repository.findFileIndexByName("a.c"));
  EXPECT_EQ(nullptr, repository.findFileByName("a.c"));
  VarnFile& first = repository.createGenericFile("a.c");
  VarnFile& second = repository.createDataTypesFile("a.c");
  EXPECT_EQ(1, repository.findFileIndexByName("a.c"));
  EXPECT_EQ(&second, repository.findFileByName("a.c"));
  EXPECT_EQ(nullptr, repository.findFileByName("A.c"));
  EXPECT_EQ((std::vector<VarnFile*>{&first, &second}), repository.getFileList());
  EXPECT_EQ(repository.getFileList(), repository.getFileList_kobo());
}

TEST(VarnFileRepository, ModelFilesAreNamedByTheTable) {
  VarnFileRepository repository;
  repository.addFileNameToTable(ModelHeaderFile, "m");
  repository.addFileNameToTable("ModelTypesFile", "m_types");
  repository.addFileNameToTable(ModelTypesFile, "a later name");
  repository.addFileNameToTable("modelheaderfile", "no such type");
  std::string files;
  for (const VarnFile* file :
       {&repository.createModelHeaderFile(), &repository.createModelTypesFile()}) {
    files += file->getNameAscii() + ' ' + file->getType() + ' ' + file->getCreator() + '\n';
  }
  EXPECT_EQ("m.h SystemHeader Plexar\nm_types.h SystemHeader Plexar\n", files);
  EXPECT_EQ("", repository.getFileNameFromTable(ModelDataFile) +
                    repository.getFileNameFromTable("modelheaderfile"));
}

TEST(VarnFileRepository, ModulesReachTheirLastFile) {
  VarnFileRepository repository;
  VarnModuleFile& header = repository.createModuleHeaderFile("m.h", {3, 5, 3});
  VarnModuleFile& source = repository.createModuleSourceFile("m.c", {5});
  VarnModuleFile& later = repository.createModuleHeaderFile("n.h", {5, -1});
  repository.createModuleHeaderFile("unreached.h", {});
  std::vector<const VarnModuleFile*> reached;
  for (const int index : {3, 5, -1, 0}) {
    reached.push_back(repository.getModuleHeaderFileByIndex(index));
    reached.push_back(repository.getModuleSourceFileByIndex(index));
  }
  EXPECT_EQ((std::vector<const VarnModuleFile*>{&header, nullptr, &later, &source, &later, nullptr,
                                                nullptr, nullptr}),
            reached);
  EXPECT_EQ(4U, repository.getFileList().size());
}

TEST(VarnFileRepository, WarnsOfNamesThatDifferInCaseOnly) {
  VarnFileRepository repository;
  FileRepErrorStatus status;
  for (const char* name : {"two\nlines.c", "\xC3\x84.c", "\xC3\xA4.c", "\xFF.c"}) {
    repository.checkForDuplicateEntry(name, &status);
    EXPECT_EQ("00", std::to_string(status.hadError()) + std::to_string(status.isWarning())) << name;
  }
  repository.checkForDuplicateEntry("Two\nLINES.c", nullptr);
  repository.checkForDuplicateEntry("Two\nLINES.c", &status);
  EXPECT_TRUE(status.hadError() && status.isWarning());
  EXPECT_EQ(
      "-->The file name \"Two\n-->LINES.c\" was already given as \"two\n-->lines.c\". Names that "
      "differ only in letter case are one file on some file systems.",
      status.getMessage());

  std::string registered;
  EXPECT_TRUE(repository.findDuplicateFileEntry("model.c", registered));
  EXPECT_FALSE(repository.findDuplicateFileEntry("MODEL.C", registered));
  EXPECT_EQ("model.c", registered);
  EXPECT_TRUE(repository.getFileList().empty()) << "checking makes no file";
}

}  // namespace
}  // namespace Varn
