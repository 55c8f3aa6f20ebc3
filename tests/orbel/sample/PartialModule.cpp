#include <orbel/Export.hpp>

extern "C" ORBEL_EXPORT void OrbelInitialize_orbel_partial() {}
