#ifndef VARN_VARNFILECONTENTCREATOR_HPP
#define VARN_VARNFILECONTENTCREATOR_HPP

#include <varn/Export.hpp>

namespace Varn {

class VarnFileContent;
class VarnFileContentBuilder;

// The director of the builders.
class VARN_EXPORT VarnFileContentCreator {
 public:
  // Runs buildContent(), the section steps in the order of their kinds, and returns the builder's
  // getFileContent(), which the caller owns from then on. When a step throws, the content made so
  // far is deleted and the exception passes on; the builder is fit for another run, not for further
  // steps.
  static VarnFileContent* createFileContent(VarnFileContentBuilder& builder);
};

}  // namespace Varn

#endif
