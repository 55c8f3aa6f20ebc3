#ifndef VARN_SECTIONS_TEXTPAGE_HPP
#define VARN_SECTIONS_TEXTPAGE_HPP

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <memory>
#include <string_view>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <varn/StringFileSectionFragment.hpp>

namespace Varn {

// Pieces of text packed into one block of memory: their lengths first, then the texts, one after
// the other, so that the whole text of the page is one stretch of memory and a piece costs four
// bytes beside its text.
//
// Pages are shared by the sections that hold their pieces. What is in a page never changes; pieces
// are only appended, and the page only grows, while a single section holds it, so that all holders
// see the same pieces.
class TextPage : public boost::intrusive_ref_counter<TextPage> {
 public:
  using Length = std::uint32_t;
  static constexpr std::size_t maxLength = 1U << 30U;

  // A page with room for one piece of `length` (at most maxLength), and for at least
  // `textCapacity` bytes of pieces of that size.
  static boost::intrusive_ptr<TextPage> make(std::size_t textCapacity, std::size_t length);

  // A page to go on with when this one is full: with room for a piece of `length` and for at least
  // `textCapacity` bytes in pieces of the sizes seen so far. grown() takes the place of this page:
  // it has its pieces, and this one gives its fragments away and is of no more use.
  boost::intrusive_ptr<TextPage> next(std::size_t textCapacity, std::size_t length) const;
  boost::intrusive_ptr<TextPage> grown(std::size_t textCapacity, std::size_t length);

  TextPage(const TextPage&) = delete;
  TextPage& operator=(const TextPage&) = delete;
  ~TextPage() = default;

  // A page is longer than the class, so its memory is given back without a size. It comes from the
  // global operator new; see allocate().
  // NOLINTNEXTLINE(misc-new-delete-overloads)
  static void operator delete(void* memory) noexcept { ::operator delete(memory); }

  std::size_t textCapacity() const { return textCapacity_; }
  std::size_t pieceCount() const { return pieceCount_; }
  std::string_view text() const { return {data(), textSize_}; }

  // Preconditions of append(): the piece fits, and nobody else holds the page.
  bool fits(std::size_t length) const {
    return textSize_ + length <= textCapacity_ && pieceCount_ < pieceCapacity_;
  }
  void append(const char* text, std::size_t length);

  // Calls `visit(std::string_view)` for each piece in order.
  template <typename Visitor>
  void forEachPiece(Visitor visit) const {
    const char* text = data();
    for (std::size_t i = 0; i < pieceCount_; ++i) {
      const std::size_t length = lengths()[i];
      visit(std::string_view(text, length));
      text += length;
    }
  }

  // Piece `index` as a fragment, made when first asked for and good as long as the page, or one
  // that takes its place, lives. Asking for every piece in order takes linear time.
  const FileSectionFragment& fragment(std::size_t index) const;

 private:
  // The pieces that were asked for as fragments: the first ones, and the bytes they take.
  struct Fragments {
    std::deque<StringFileSectionFragment> pieces;
    std::size_t textSize = 0;
  };

  TextPage(std::size_t textCapacity, std::size_t pieceCapacity) noexcept
      : textCapacity_(static_cast<Length>(textCapacity)),
        pieceCapacity_(static_cast<Length>(pieceCapacity)) {}

  static boost::intrusive_ptr<TextPage> allocate(std::size_t textCapacity,
                                                 std::size_t pieceCapacity);
  // How many pieces of the sizes seen so far, one of `length` among them, `textCapacity` can hold.
  std::size_t piecesIn(std::size_t textCapacity, std::size_t length) const;

  Length* lengths() { return reinterpret_cast<Length*>(this + 1); }
  const Length* lengths() const { return reinterpret_cast<const Length*>(this + 1); }
  char* data() { return reinterpret_cast<char*>(lengths() + pieceCapacity_); }
  const char* data() const { return reinterpret_cast<const char*>(lengths() + pieceCapacity_); }

  Length textCapacity_;
  Length textSize_ = 0;
  Length pieceCapacity_;
  Length pieceCount_ = 0;
  mutable std::unique_ptr<Fragments> fragments_;
};

}  // namespace Varn

#endif
