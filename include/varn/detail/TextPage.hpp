#ifndef VARN_DETAIL_TEXTPAGE_HPP
#define VARN_DETAIL_TEXTPAGE_HPP

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <varn/FileSectionFragment.hpp>

namespace Varn::detail {

class TextPool;

// Pieces of text packed into one block of memory: texts grow from its start, lengths from its end.
// The text of a page is therefore contiguous, and a piece costs four bytes beside its text.
//
// Copies of a page share its block. The pieces in it never change, and only an unshared block takes
// further ones. The block of a short text may be allocated from a pool. Pooled blocks are never
// shared: moveOutOf() must precede a copy and a call of fragment().
class TextPage {
 public:
  // The length of the longest piece that fits into a page.
  static constexpr std::size_t maxLength = 1U << 30U;

  TextPage();
  TextPage(const TextPage& source);
  TextPage& operator=(const TextPage&) = delete;
  TextPage(TextPage&& source) noexcept;
  TextPage& operator=(TextPage&& source) noexcept;
  // Pooled blocks are not freed here; they die with the pool.
  ~TextPage();

  // Appends a piece of `length`, at most maxLength. Returns false and does nothing when the block
  // is shared, or is full and has reached its largest size; continue with next() then. A page
  // without pieces takes every piece. `pool`, which may be null, is the same at every call of an
  // object. An allocation failure changes nothing.
  bool append(const char* text, std::size_t length, TextPool* pool);

  // Drops the piece that the last operation has appended.
  void undoAppend();

  // An empty page to continue with after append() refused a piece of `length`: a large one if this
  // one was full.
  TextPage next(std::size_t length) const;

  // Moves pooled text to a block of its own.
  void moveOutOf(TextPool* pool);

  // Moves the text to a block of its size, unless little would be gained or the block is shared.
  void shrinkToFit(TextPool* pool);

  // Drops the pieces and deallocates a pooled block.
  void clear(TextPool* pool);

  std::size_t pieceCount() const { return extent_.pieceCount; }
  std::string_view text() const;
  // The length of piece `index`.
  std::size_t length(std::size_t index) const;

  // Piece `index` as a fragment, made on first use and valid while a page holds the piece. Visiting
  // every piece in order takes linear time.
  const FileSectionFragment& fragment(std::size_t index) const;

 private:
  struct Block;

  using Length = std::uint32_t;
  // Kept outside the block, which is rarely in the cache when a page is written or destroyed.
  struct Extent {
    Length textSize;
    Length pieceCount : 31;
    Length isPooled : 1;
  };

  // The bytes that the pieces occupy once one of `length` is added.
  std::size_t sizeWith(std::size_t length) const;
  // Ensures an unshared block of `size` bytes; false when another page should be started instead.
  bool reserve(std::size_t size, TextPool* pool);
  void relocate(boost::intrusive_ptr<Block> block, bool isPooled, TextPool* pool);
  void releaseBlock(TextPool* pool);

  boost::intrusive_ptr<Block> block_;
  Extent extent_{};
};

}  // namespace Varn::detail

#endif
