#ifndef VARN_DETAIL_FRAGMENTSTORE_HPP
#define VARN_DETAIL_FRAGMENTSTORE_HPP

#include <cstddef>
#include <cstdio>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include <boost/shared_ptr.hpp>

#include <varn/FileSectionFragment.hpp>
#include <varn/detail/TextPage.hpp>

namespace Varn::detail {

// The fragments of one section, in order. Text that is appended as characters is packed into pages;
// a fragment that is appended as an object is kept as it is and used through its virtual operations
// only. A copy shares pages and objects.
//
// A failed append leaves the store unchanged. Most stores hold a few pieces of text or none: such a
// store is one page, which may be allocated from a pool shared by the sections of a repository.
// Copying a store and reading single fragments move its text out of the pool.
class FragmentStore {
 public:
  FragmentStore();
  // The buffer of whole() is not copied.
  FragmentStore(const FragmentStore& source);
  FragmentStore& operator=(const FragmentStore&) = delete;
  ~FragmentStore();

  // Allocates short texts from `pool` from now on. The pool must outlive the store; copies of the
  // store do not use it. Precondition: the store has no pool yet.
  void usePool(TextPool& pool) { pool_ = &pool; }

  void append(const char* text, std::size_t length);
  // Also empties the text that whole() has returned.
  void append(boost::shared_ptr<FileSectionFragment> fragment);
  // Drops the fragment that the last operation has appended.
  void undoAppend();
  // Frees most of the memory that is kept for further texts.
  void shrinkToFit() { page_.shrinkToFit(pool_); }
  // Drops the fragments; the text that whole() has returned stays.
  void clear();

  std::size_t size() const;

  // Fragment `index`, valid while a store holds it.
  const FileSectionFragment& fragment(std::size_t index) const;

  // The concatenation of all texts, made at every call in a buffer of the store.
  const std::string& whole() const;
  // The same text, valid until the store changes. Copies nothing when one page holds all of it.
  std::string_view wholeInPlace() const;

  void print(std::ostream& os) const;
  // Write sizes match one `fwrite` per fragment. The stream is locked while pages are written, and
  // not touched when there is no text.
  void write(FILE* stream) const;

 private:
  // Data that few stores need, kept out of line: the fragments before the last page, the whole
  // text.
  struct Rest;

  std::size_t sizeBeforePage() const;
  // Appends what does not fit into the last page.
  void appendBehindPage(const char* text, std::size_t length);
  // Moves the last page to the fragments before it.
  void closePage();
  Rest& rest() const;
  // The last page, moved out of the pool.
  const TextPage& sharedPage() const;
  template <typename OnPage, typename OnFragment>
  void visit(OnPage onPage, OnFragment onFragment) const;

  TextPool* pool_ = nullptr;
  // The last fragments, if they were appended as characters.
  mutable TextPage page_;
  mutable std::unique_ptr<Rest> rest_;
};

}  // namespace Varn::detail

#endif
