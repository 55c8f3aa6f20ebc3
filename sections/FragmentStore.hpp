#ifndef VARN_SECTIONS_FRAGMENTSTORE_HPP
#define VARN_SECTIONS_FRAGMENTSTORE_HPP

#include <cstddef>
#include <cstdio>
#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

#include <boost/shared_ptr.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <varn/FileSectionFragment.hpp>

#include "sections/TextPage.hpp"

namespace Varn {

// The fragments of one section, in order. Text that the section is given as characters is packed
// into pages; a fragment that comes as an object keeps its own place and is only ever used through
// its virtual operations. A copy shares pages and objects.
//
// Operations that append either succeed or leave the store as it was.
class FragmentStore {
 public:
  FragmentStore() = default;
  // The whole text is put together anew when the copy is asked for it.
  FragmentStore(const FragmentStore& source);
  FragmentStore& operator=(const FragmentStore&) = delete;
  ~FragmentStore() = default;

  void append(const char* text, std::size_t length);
  void append(boost::shared_ptr<FileSectionFragment> fragment);
  // Drops the fragments; the text that whole() has returned stays.
  void clear();

  std::size_t size() const { return size_; }

  // Fragment `index`, good as long as a store holds it.
  const FileSectionFragment& fragment(std::size_t index) const;

  // All texts in one, put together at every call in a buffer that lives as long as the store.
  const std::string& whole() const;
  void clearWhole() { whole_.clear(); }

  void print(std::ostream& os) const;
  // One `fwrite` per fragment, the stream locked throughout.
  void write(FILE* stream) const;

 private:
  using PagePtr = boost::intrusive_ptr<TextPage>;
  using FragmentPtr = boost::shared_ptr<FileSectionFragment>;

  // A page, or one fragment that came as an object.
  struct Segment {
    // The position of its first fragment.
    std::size_t first;
    std::variant<PagePtr, FragmentPtr> holder;
  };

  // The last page, if a piece of `length` may be appended to it; else null.
  TextPage* openPage(std::size_t length) const;
  std::size_t nextPageCapacity() const;

  std::vector<Segment> segments_;
  std::size_t size_ = 0;
  mutable std::string whole_;
};

}  // namespace Varn

#endif
