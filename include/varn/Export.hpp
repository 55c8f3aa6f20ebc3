// Marks what varn_filepackaging offers to others; every other symbol of the library is hidden.
#ifndef VARN_EXPORT_HPP
#define VARN_EXPORT_HPP

#define VARN_EXPORT __attribute__((visibility("default")))

#endif
