#ifndef VARN_VARNMODULEFILECONTENTBUILDER_HPP
#define VARN_VARNMODULEFILECONTENTBUILDER_HPP

#include <varn/Export.hpp>
#include <varn/TableFileContentBuilder.hpp>

namespace Varn {

// Makes the content of a module file: includes, defines, typedefs, forward declarations, extern
// data and functions, prototypes, declarations, functions and documentation.
class VARN_EXPORT VarnModuleFileContentBuilder : public TableFileContentBuilder {
 public:
  VarnModuleFileContentBuilder() : TableFileContentBuilder(ModuleFile) {}
};

}  // namespace Varn

#endif
