#ifndef VARN_TEXTPAGE_HPP
#define VARN_TEXTPAGE_HPP

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <varn/FileSectionFragment.hpp>

namespace Varn {

class TextPool;

// Pieces of text packed into one block of memory: the texts one after the other from its start,
// their lengths from its end. So the whole text of the page is one stretch of memory, a piece costs
// four bytes beside its text, and the block is full when the two meet, whatever the sizes of the
// pieces.
//
// A page that is copied shares its block with the copy, and with it the pieces, which never change;
// only a page that has its block for itself takes further ones. The block of a short text may come
// from a pool: then the page has it for itself, and is neither copied nor asked for fragments
// before it has left the pool.
class TextPage {
 public:
  // The length of the longest piece that fits into a page.
  static constexpr std::size_t maxLength = 1U << 30U;

  TextPage();
  TextPage(const TextPage& source);
  TextPage& operator=(const TextPage&) = delete;
  TextPage(TextPage&& source) noexcept;
  TextPage& operator=(TextPage&& source) noexcept;
  // Leaves a block of a pool to the pool's end, without a look at it.
  ~TextPage();

  // Appends a piece of `length`, at most maxLength, and is true; or does nothing and is false when
  // the block is shared, or is full and so large that another page should be begun. A page without
  // pieces takes every piece. Short texts are kept in `pool`, unless it is null; it is the same one
  // at every call. Nothing changes when memory runs out.
  bool append(const char* text, std::size_t length, TextPool* pool);

  // An empty page to go on with after append() refused a piece of `length`: a large one, if this
  // one was full.
  TextPage next(std::size_t length) const;

  // Moves a text that is in `pool` to a block of its own.
  void leavePool(TextPool* pool);

  // Drops the pieces and gives a block that is in `pool` back.
  void clear(TextPool* pool);

  std::size_t pieceCount() const { return extent_.pieceCount; }
  std::string_view text() const;
  // Of piece `index`.
  std::size_t length(std::size_t index) const;

  // Piece `index` as a fragment, made when first asked for and good as long as a page has the
  // piece. Asking for every piece in order takes linear time.
  const FileSectionFragment& fragment(std::size_t index) const;

 private:
  struct Block;

  using Length = std::uint32_t;
  // It is here and not in the block, which is rarely in the cache when a page is written or dies.
  struct Extent {
    Length textSize;
    Length pieceCount : 31;
    Length isPooled : 1;
  };

  // What the pieces take when one of `length` is added.
  std::size_t sizeWith(std::size_t length) const;
  // Sees to a block of `size` bytes that the page has for itself; false when there should be none.
  bool makeRoom(std::size_t size, TextPool* pool);
  void moveTo(boost::intrusive_ptr<Block> block, bool isPooled, TextPool* pool);
  void dropBlock(TextPool* pool);

  boost::intrusive_ptr<Block> block_;
  Extent extent_{};
};

}  // namespace Varn

#endif
