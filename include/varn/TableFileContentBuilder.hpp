#ifndef VARN_TABLEFILECONTENTBUILDER_HPP
#define VARN_TABLEFILECONTENTBUILDER_HPP

#include <varn/Export.hpp>
#include <varn/VarnFileContentBuilder.hpp>
#include <varn/VarnFileSectionKind.hpp>

namespace Varn {

// What the builders of the three file classes share: each step looks up, in the one table of
// section kinds, which section a file of its class has of that kind, if any.
class VARN_EXPORT TableFileContentBuilder : public VarnFileContentBuilder {
 public:
  TableFileContentBuilder(const TableFileContentBuilder&) = default;
  TableFileContentBuilder& operator=(const TableFileContentBuilder&) = default;
  ~TableFileContentBuilder() override;

  // Forgets an earlier content without deleting it: it is not the builder's.
  void buildContent() override;

  // Before buildContent() the steps do nothing.
  void buildBannerSection() override;
  void buildIncludesSection() override;
  void buildModelTypesIncludesSection() override;
  void buildModelTypesDefinesSection() override;
  void buildDefinesSection() override;
  void buildModelTypesTypedefsSection() override;
  void buildIntrinsicTypesSection() override;
  void buildPrimitiveTypedefsSection() override;
  void buildUserTopSection() override;
  void buildTypedefsSection() override;
  void buildForwardDeclarationsSection() override;
  void buildEnumsSection() override;
  void buildDefinitionsSection() override;
  void buildExternDataSection() override;
  void buildExternFcnsSection() override;
  void buildFcnPrototypesSection() override;
  void buildDeclarationsSection() override;
  void buildFunctionsSection() override;
  void buildCompilerErrorsSection() override;
  void buildCompilerWarningsSection() override;
  void buildDocumentationSection() override;
  void buildUserBottomSection() override;

  VarnFileContent* getFileContent() override;

 protected:
  // The classes of files that the table describes, in the order of its columns.
  enum FileClass : unsigned char { GenericFile, ModuleFile, DataTypesFile };

  explicit TableFileContentBuilder(FileClass fileClass);

 private:
  void buildSection(VarnFileSectionKind kind);

  VarnFileContent* content_ = nullptr;
  FileClass fileClass_;
};

}  // namespace Varn

#endif
