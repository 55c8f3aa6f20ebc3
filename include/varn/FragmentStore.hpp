#ifndef VARN_FRAGMENTSTORE_HPP
#define VARN_FRAGMENTSTORE_HPP

#include <cstddef>
#include <cstdio>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include <boost/shared_ptr.hpp>

#include <varn/Export.hpp>
#include <varn/FileSectionFragment.hpp>
#include <varn/TextPage.hpp>

namespace Varn {

// The fragments of one section, in order. Text that the section is given as characters is packed
// into pages; a fragment that comes as an object keeps its own place and is only ever used through
// its virtual operations. A copy shares pages and objects.
//
// Operations that append either succeed or leave the store as it was. A file has a store for each
// of its sections, most of which hold a few pieces of text or none: such a store is one page, and
// its text may share a pool with the other sections of a repository. What only few stores need, to
// be copied or to show their fragments, takes a text out of the pool.
class VARN_EXPORT FragmentStore {
 public:
  FragmentStore();
  // The whole text is put together anew when the copy is asked for it.
  FragmentStore(const FragmentStore& source);
  FragmentStore& operator=(const FragmentStore&) = delete;
  ~FragmentStore();

  // Keeps short texts in `pool` from now on, which must outlive the store. Copies of the store do
  // without. Precondition: the store has no pool yet.
  void usePool(TextPool& pool) { pool_ = &pool; }

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
  // The same text, good until the store changes: not put together when it stands in one page.
  std::string_view wholeInPlace() const;

  void print(std::ostream& os) const;
  // The stream stays locked throughout, and hands on the blocks that it would hand on if each
  // fragment were written with an `fwrite` of its own.
  void write(FILE* stream) const;

 private:
  // What few stores need: the fragments before the last page, and the whole text.
  struct Rest;

  std::size_t sizeBeforePage() const;
  // Appends what the last page does not take.
  void appendBehindPage(const char* text, std::size_t length);
  // Puts the last page among the fragments before it, so that something else can follow.
  void closePage();
  Rest& rest() const;
  // The last page, its text no longer in the pool.
  const TextPage& sharedPage() const;
  template <typename OnPage, typename OnFragment>
  void visit(OnPage onPage, OnFragment onFragment) const;

  TextPool* pool_ = nullptr;
  // The last fragments, if they came as characters.
  mutable TextPage page_;
  mutable std::unique_ptr<Rest> rest_;
};

}  // namespace Varn

#endif
