#ifndef VARN_VARNSDATATYPESFILECONTENTBUILDER_HPP
#define VARN_VARNSDATATYPESFILECONTENTBUILDER_HPP

#include <varn/Export.hpp>
#include <varn/TableFileContentBuilder.hpp>

namespace Varn {

// Makes the content of a data types file: includes, defines and typedefs.
class VARN_EXPORT VarnSDataTypesFileContentBuilder : public TableFileContentBuilder {
 public:
  VarnSDataTypesFileContentBuilder() : TableFileContentBuilder(DataTypesFile) {}
};

}  // namespace Varn

#endif
