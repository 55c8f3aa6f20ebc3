#include <orbel/Export.hpp>

extern "C" ORBEL_EXPORT void OrbelInitialize_orbel_partial() {}
extern "C" ORBEL_EXPORT const void* QueryOrbelFcnTable_orbel_partial() { return nullptr; }
