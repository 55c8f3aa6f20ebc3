#ifndef VARN_UNIQUENAMES_HPP
#define VARN_UNIQUENAMES_HPP

#include <string>
#include <vector>

#include <boost/unordered_set.hpp>

#include <varn/Export.hpp>

namespace Varn {

// A list of names in the order they came, to which a name is added only once. A list that is
// assigned as a whole is taken as it is, repeats included.
//
// Copies are independent. Every operation that fails leaves the list as it was.
class VARN_EXPORT UniqueNames {
 public:
  UniqueNames() = default;
  UniqueNames(const UniqueNames&) = default;
  UniqueNames& operator=(const UniqueNames& source);
  ~UniqueNames() = default;

  // Appends `name` unless it is there. Constant time on average.
  void add(const std::string& name);

  // Replaces the list by `names`, which may be this list itself.
  void assign(const std::vector<std::string>& names);

  // Good until the list changes.
  const std::vector<std::string>& list() const { return list_; }

 private:
  void swap(UniqueNames& other) noexcept;

  std::vector<std::string> list_;
  boost::unordered_set<std::string> known_;
};

}  // namespace Varn

#endif
