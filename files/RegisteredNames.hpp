#ifndef VARN_FILES_REGISTEREDNAMES_HPP
#define VARN_FILES_REGISTEREDNAMES_HPP

#include <cstddef>
#include <string>

#include <boost/unordered_set.hpp>

namespace Varn {

// 64-bit FNV-1a (G. Fowler, L. C. Noll, K.-P. Vo) over the bytes, each lowered with the C library's
// `tolower`.
struct CaseInsensitiveHash {
  std::size_t operator()(const std::string& name) const;
};

// Equality but for letter case, under the global locale.
struct CaseInsensitiveEqual {
  bool operator()(const std::string& a, const std::string& b) const;
};

// File names that count as one when they differ only in letter case, each kept as it was first
// written.
using RegisteredNames =
    boost::unordered_set<std::string, CaseInsensitiveHash, CaseInsensitiveEqual>;

}  // namespace Varn

#endif
