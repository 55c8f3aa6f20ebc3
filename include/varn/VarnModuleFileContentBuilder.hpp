#ifndef VARN_VARNMODULEFILECONTENTBUILDER_HPP
#define VARN_VARNMODULEFILECONTENTBUILDER_HPP

#include <varn/Export.hpp>
#include <varn/VarnFileContentBuilder.hpp>

namespace Varn {

// Makes the content of a module file: includes, defines, typedefs, forward declarations, extern
// data and functions, prototypes, declarations, functions and documentation.
class VARN_EXPORT VarnModuleFileContentBuilder : public VarnFileContentBuilder {
 public:
  VarnModuleFileContentBuilder();
  VarnModuleFileContentBuilder(const VarnModuleFileContentBuilder&);
  VarnModuleFileContentBuilder& operator=(const VarnModuleFileContentBuilder&);
  ~VarnModuleFileContentBuilder() override;

  // Forgets an earlier content without deleting it.
  void buildContent() override;
  // Before buildContent() the steps do nothing.
  void buildIncludesSection() override;
  void buildDefinesSection() override;
  void buildTypedefsSection() override;
  void buildForwardDeclarationsSection() override;
  void buildExternDataSection() override;
  void buildExternFcnsSection() override;
  void buildFcnPrototypesSection() override;
  void buildDeclarationsSection() override;
  void buildFunctionsSection() override;
  void buildDocumentationSection() override;
  VarnFileContent* getFileContent() override;

 private:
  VarnFileContent* content_ = nullptr;
};

}  // namespace Varn

#endif
