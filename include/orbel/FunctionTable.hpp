#ifndef ORBEL_FUNCTIONTABLE_HPP
#define ORBEL_FUNCTIONTABLE_HPP

#include <orbel/Arguments.hpp>
#include <orbel/Value.hpp>

namespace orbel {

// A free-standing function that a module offers to scripts.
struct FunctionEntry {
  const char* name;
  Value (*call)(Arguments arguments);
};

// The result of a module's QueryOrbelFcnTable_<name>. The list ends with an entry without a name.
struct FunctionTable {
  const FunctionEntry* entries;
};

}  // namespace orbel

#endif
