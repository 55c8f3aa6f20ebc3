#include "sections/TextPage.hpp"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>
#include <string>
#include <utility>

namespace Varn {
namespace {

// Shorter pieces get no more room for their lengths than pieces of this size.
constexpr std::size_t smallestLength = 4;

}  // namespace

boost::intrusive_ptr<TextPage> TextPage::allocate(std::size_t textCapacity,
                                                  std::size_t pieceCapacity) {
  void* memory = ::operator new(sizeof(TextPage) + pieceCapacity * sizeof(Length) + textCapacity);
  return boost::intrusive_ptr<TextPage>(::new (memory) TextPage(textCapacity, pieceCapacity));
}

boost::intrusive_ptr<TextPage> TextPage::make(std::size_t textCapacity, std::size_t length) {
  assert(length <= maxLength);
  textCapacity = std::max(textCapacity, length);
  return allocate(textCapacity, textCapacity / std::max(length, smallestLength));
}

boost::intrusive_ptr<TextPage> TextPage::next(std::size_t textCapacity, std::size_t length) const {
  assert(length <= maxLength);
  textCapacity = std::max(textCapacity, length);
  return allocate(textCapacity, piecesIn(textCapacity, length));
}

boost::intrusive_ptr<TextPage> TextPage::grown(std::size_t textCapacity, std::size_t length) {
  assert(use_count() == 1);
  textCapacity = std::max(textCapacity, textSize_ + length);
  boost::intrusive_ptr<TextPage> page = allocate(textCapacity, piecesIn(textCapacity, length));
  std::memcpy(page->lengths(), lengths(), pieceCount_ * sizeof(Length));
  std::memcpy(page->data(), data(), textSize_);
  page->textSize_ = textSize_;
  page->pieceCount_ = pieceCount_;
  page->fragments_ = std::move(fragments_);
  return page;
}

std::size_t TextPage::piecesIn(std::size_t textCapacity, std::size_t length) const {
  const std::size_t count = pieceCount_ + std::size_t{1};
  const std::size_t size = std::max(textSize_ + length, count * smallestLength);
  return std::max(textCapacity * count * 3 / 2 / size, count) + 2;
}

void TextPage::append(const char* text, std::size_t length) {
  assert(fits(length) && use_count() == 1);
  std::memcpy(data() + textSize_, text, length);
  lengths()[pieceCount_] = static_cast<Length>(length);
  textSize_ += static_cast<Length>(length);
  ++pieceCount_;
}

const FileSectionFragment& TextPage::fragment(std::size_t index) const {
  assert(index < pieceCount_);
  if (!fragments_) fragments_ = std::make_unique<Fragments>();
  while (fragments_->pieces.size() <= index) {
    const std::size_t length = lengths()[fragments_->pieces.size()];
    fragments_->pieces.emplace_back(std::string(data() + fragments_->textSize, length));
    fragments_->textSize += length;
  }
  return fragments_->pieces[index];
}

}  // namespace Varn
