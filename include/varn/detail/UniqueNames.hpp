#ifndef VARN_DETAIL_UNIQUENAMES_HPP
#define VARN_DETAIL_UNIQUENAMES_HPP

#include <string>
#include <vector>

#include <boost/unordered_set.hpp>

namespace Varn::detail {

// A list of names in insertion order, without repeats; an assigned list is kept as given, repeats
// included.
//
// Copies are independent. A failed operation leaves the list unchanged.
class UniqueNames {
 public:
  UniqueNames() = default;
  UniqueNames(const UniqueNames&) = default;
  UniqueNames& operator=(const UniqueNames&) = delete;
  ~UniqueNames() = default;

  // Appends `name` unless present. Constant time on average.
  void add(const std::string& name);

  // Replaces the list by `names`, which may be this list itself.
  void assign(const std::vector<std::string>& names);

  // Valid until the list changes.
  const std::vector<std::string>& list() const { return list_; }

 private:
  void swap(UniqueNames& other) noexcept;

  std::vector<std::string> list_;
  boost::unordered_set<std::string> known_;
};

}  // namespace Varn::detail

#endif
