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

// Pieces of text packed into one block of memory: the texts grow from the front, one after the
// other, their lengths from the back, so that the whole text of the page is one stretch of memory
// and a piece costs four bytes beside its text.
//
// Pages are shared by the sections that hold their pieces. What is in a page never changes; pieces
// are only appended, and only while a single section holds the page, so that all holders see the
// same pieces.
class TextPage : public boost::intrusive_ref_counter<TextPage> {
 public:
  using Length = std::uint32_t;
  static constexpr std::size_t maxLength = 1U << 30U;

  // A page with room for one piece of `length` (at most maxLength) and for `capacity` bytes of
  // texts and lengths at least.
  static boost::intrusive_ptr<TextPage> make(std::size_t capacity, std::size_t length);

  TextPage(const TextPage&) = delete;
  TextPage& operator=(const TextPage&) = delete;
  ~TextPage() = default;

  // A page is longer than the class, so its memory is given back without a size. It comes from the
  // global operator new; see make().
  // NOLINTNEXTLINE(misc-new-delete-overloads)
  static void operator delete(void* memory) noexcept { ::operator delete(memory); }

  std::size_t capacity() const { return capacity_; }
  std::size_t pieceCount() const { return pieceCount_; }
  std::string_view text() const { return {data(), textSize_}; }

  // Preconditions of append(): the piece fits, and nobody else holds the page.
  bool fits(std::size_t length) const {
    return textSize_ + length + (pieceCount_ + 1) * sizeof(Length) <= capacity_;
  }
  void append(const char* text, std::size_t length);

  // Calls `visit(std::string_view)` for each piece in order.
  template <typename Visitor>
  void forEachPiece(Visitor visit) const {
    const char* text = data();
    for (std::size_t i = 0; i < pieceCount_; ++i) {
      const std::size_t length = lengthOf(i);
      visit(std::string_view(text, length));
      text += length;
    }
  }

  // Piece `index` as a fragment, made when first asked for and good as long as the page lives.
  // Asking for every piece in order takes linear time.
  const FileSectionFragment& fragment(std::size_t index) const;

 private:
  // The pieces that were asked for as fragments: the first ones, and the bytes they take.
  struct Fragments {
    std::deque<StringFileSectionFragment> pieces;
    std::size_t textSize = 0;
  };

  explicit TextPage(std::size_t capacity) noexcept : capacity_(static_cast<Length>(capacity)) {}

  char* data() { return reinterpret_cast<char*>(this + 1); }
  const char* data() const { return reinterpret_cast<const char*>(this + 1); }
  std::size_t lengthOffset(std::size_t index) const {
    return capacity_ - (index + 1) * sizeof(Length);
  }
  std::size_t lengthOf(std::size_t index) const;

  Length capacity_;
  Length textSize_ = 0;
  Length pieceCount_ = 0;
  mutable std::unique_ptr<Fragments> fragments_;
};

}  // namespace Varn

#endif
