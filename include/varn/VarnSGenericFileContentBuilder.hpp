#ifndef VARN_VARNSGENERICFILECONTENTBUILDER_HPP
#define VARN_VARNSGENERICFILECONTENTBUILDER_HPP

#include <varn/Export.hpp>
#include <varn/TableFileContentBuilder.hpp>

namespace Varn {

// Makes the content of a generic file: a section of every kind.
class VARN_EXPORT VarnSGenericFileContentBuilder : public TableFileContentBuilder {
 public:
  VarnSGenericFileContentBuilder() : TableFileContentBuilder(GenericFile) {}
};

}  // namespace Varn

#endif
