#ifndef VARN_VARNSDATATYPESFILECONTENTBUILDER_HPP
#define VARN_VARNSDATATYPESFILECONTENTBUILDER_HPP

#include <varn/Export.hpp>
#include <varn/VarnFileContentBuilder.hpp>

namespace Varn {

// Makes the content of a data types file: includes, defines and typedefs.
class VARN_EXPORT VarnSDataTypesFileContentBuilder : public VarnFileContentBuilder {
 public:
  VarnSDataTypesFileContentBuilder();
  VarnSDataTypesFileContentBuilder(const VarnSDataTypesFileContentBuilder&);
  VarnSDataTypesFileContentBuilder& operator=(const VarnSDataTypesFileContentBuilder&);
  ~VarnSDataTypesFileContentBuilder() override;

  // Forgets an earlier content without deleting it.
  void buildContent() override;
  // Before buildContent() the steps do nothing.
  void buildIncludesSection() override;
  void buildDefinesSection() override;
  void buildTypedefsSection() override;
  VarnFileContent* getFileContent() override;

 private:
  VarnFileContent* content_ = nullptr;
};

}  // namespace Varn

#endif
