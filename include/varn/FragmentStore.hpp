#ifndef VARN_FRAGMENTSTORE_HPP
#define VARN_FRAGMENTSTORE_HPP

#include <cstddef>
#include <cstdio>
#include <iosfwd>
#include <memory>
#include <string>

#include <boost/shared_ptr.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <varn/Export.hpp>
#include <varn/FileSectionFragment.hpp>

namespace Varn {

class TextPage;

// The fragments of one section, in order. Text that the section is given as characters is packed
// into pages; a fragment that comes as an object keeps its own place and is only ever used through
// its virtual operations. A copy shares pages and objects.
//
// Operations that append either succeed or leave the store as it was. A file has a store for each
// of its sections, most of which hold a few pieces of text or none: such a store is two pointers,
// and one page.
class VARN_EXPORT FragmentStore {
 public:
  FragmentStore();
  // The whole text is put together anew when the copy is asked for it.
  FragmentStore(const FragmentStore& source);
  FragmentStore& operator=(const FragmentStore&) = delete;
  ~FragmentStore();

  void append(const char* text, std::size_t length);
  // Also empties the text that whole() has returned.
  void append(boost::shared_ptr<FileSectionFragment> fragment);
  // Drops the fragments; the text that whole() has returned stays.
  void clear();

  std::size_t size() const;

  // Fragment `index`, good as long as a store holds it.
  const FileSectionFragment& fragment(std::size_t index) const;

  // All texts in one, put together at every call in a buffer that lives as long as the store.
  const std::string& whole() const;

  void print(std::ostream& os) const;
  // One `fwrite` per fragment, the stream locked throughout.
  void write(FILE* stream) const;

 private:
  // What few stores need: the fragments before the last page, and the whole text.
  struct Rest;

  std::size_t sizeBeforePage() const;
  // The page that a piece of `length` may be appended to.
  TextPage& pageFor(std::size_t length);
  // Puts the last page among the fragments before it, so that something else can follow.
  void closePage();
  Rest& rest() const;
  template <typename OnPage, typename OnFragment>
  void visit(OnPage onPage, OnFragment onFragment) const;

  // The last page, if the last fragment is in one.
  boost::intrusive_ptr<TextPage> page_;
  mutable std::unique_ptr<Rest> rest_;
};

}  // namespace Varn

#endif
