#ifndef VARN_VARNFILECONTENTBUILDER_HPP
#define VARN_VARNFILECONTENTBUILDER_HPP

#include <varn/Export.hpp>

namespace Varn {

class VarnFileContent;

// The steps by which a file's content is made. VarnFileContentCreator runs them all, in the order
// in which they are declared; a builder overrides those whose sections it wants. In this base every
// step does nothing and there is no content.
class VARN_EXPORT VarnFileContentBuilder {
 public:
  VarnFileContentBuilder();
  VarnFileContentBuilder(const VarnFileContentBuilder&);
  VarnFileContentBuilder& operator=(const VarnFileContentBuilder&);
  virtual ~VarnFileContentBuilder();

  // Starts a new content, without sections.
  virtual void buildContent();

  virtual void buildBannerSection();
  virtual void buildIncludesSection();
  virtual void buildModelTypesIncludesSection();
  virtual void buildModelTypesDefinesSection();
  virtual void buildDefinesSection();
  virtual void buildModelTypesTypedefsSection();
  virtual void buildIntrinsicTypesSection();
  virtual void buildPrimitiveTypedefsSection();
  virtual void buildUserTopSection();
  virtual void buildTypedefsSection();
  virtual void buildForwardDeclarationsSection();
  virtual void buildEnumsSection();
  virtual void buildDefinitionsSection();
  virtual void buildExternDataSection();
  virtual void buildExternFcnsSection();
  virtual void buildFcnPrototypesSection();
  virtual void buildDeclarationsSection();
  virtual void buildFunctionsSection();
  virtual void buildCompilerErrorsSection();
  virtual void buildCompilerWarningsSection();
  virtual void buildDocumentationSection();
  virtual void buildUserBottomSection();

  // The content under construction, or null. It is owned by the caller of the steps, not by the
  // builder; after it is deleted the next step must be buildContent().
  virtual VarnFileContent* getFileContent();
};

}  // namespace Varn

#endif
