// Marks the exported symbols of liborbel; every other symbol of the library is hidden.
#ifndef ORBEL_EXPORT_HPP
#define ORBEL_EXPORT_HPP

#define ORBEL_EXPORT __attribute__((visibility("default")))

#endif
