#include "sections/TextPage.hpp"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>
#include <string>

namespace Varn {

boost::intrusive_ptr<TextPage> TextPage::make(std::size_t capacity, std::size_t length) {
  assert(length <= maxLength);
  const std::size_t needed = std::max(capacity, length + sizeof(Length));
  void* memory = ::operator new(sizeof(TextPage) + needed);
  return boost::intrusive_ptr<TextPage>(::new (memory) TextPage(needed));
}

void TextPage::append(const char* text, std::size_t length) {
  assert(fits(length) && use_count() == 1);
  std::memcpy(data() + textSize_, text, length);
  const auto stored = static_cast<Length>(length);
  std::memcpy(data() + lengthOffset(pieceCount_), &stored, sizeof(stored));
  textSize_ += stored;
  ++pieceCount_;
}

std::size_t TextPage::lengthOf(std::size_t index) const {
  Length length = 0;
  std::memcpy(&length, data() + lengthOffset(index), sizeof(length));
  return length;
}

const FileSectionFragment& TextPage::fragment(std::size_t index) const {
  assert(index < pieceCount_);
  if (!fragments_) fragments_ = std::make_unique<Fragments>();
  while (fragments_->pieces.size() <= index) {
    const std::size_t length = lengthOf(fragments_->pieces.size());
    fragments_->pieces.emplace_back(std::string(data() + fragments_->textSize, length));
    fragments_->textSize += length;
  }
  return fragments_->pieces[index];
}

}  // namespace Varn
