#ifndef VARN_VARNSGENERICFILECONTENTBUILDER_HPP
#define VARN_VARNSGENERICFILECONTENTBUILDER_HPP

#include <varn/Export.hpp>
#include <varn/VarnFileContentBuilder.hpp>

namespace Varn {

// Makes the content of a generic file: a section of every kind.
class VARN_EXPORT VarnSGenericFileContentBuilder : public VarnFileContentBuilder {
 public:
  VarnSGenericFileContentBuilder();
  VarnSGenericFileContentBuilder(const VarnSGenericFileContentBuilder&);
  VarnSGenericFileContentBuilder& operator=(const VarnSGenericFileContentBuilder&);
  ~VarnSGenericFileContentBuilder() override;

  // Forgets an earlier content without deleting it.
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

 private:
  VarnFileContent* content_ = nullptr;
};

}  // namespace Varn

#endif
