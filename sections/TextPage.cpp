#include "varn/detail/TextPage.hpp"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <deque>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <varn/StringFileSectionFragment.hpp>

#include "sections/TextPool.hpp"

namespace Varn::detail {
namespace {

// Most sections hold a few short pieces: a page starts small and grows by half or a little more, up
// to a size at which the number of pages no longer matters.
constexpr std::size_t firstCapacity = 48;
constexpr std::size_t smallestGrowth = 512;
constexpr std::size_t largestCapacity = std::size_t{64} * 1024;

// A block is not moved to save less.
constexpr std::size_t smallestSaving = 64;

std::size_t capacityAfter(std::size_t capacity) {
  return std::min(capacity + std::max(capacity / 2, smallestGrowth), largestCapacity);
}

}  // namespace

// The header of the memory that holds the pieces.
struct TextPage::Block : boost::intrusive_ref_counter<Block> {
  // The first pieces as fragments, made on demand, and the bytes that they occupy.
  struct Fragments {
    std::deque<StringFileSectionFragment> pieces;
    std::size_t textSize = 0;
  };

  // A block with at least `capacity` bytes for texts and lengths.
  static boost::intrusive_ptr<Block> make(std::size_t capacity);
  static boost::intrusive_ptr<Block> makeIn(TextPool::Memory memory);
  // A block is longer than its header: unsized deallocation. make() allocates with the global
  // operator new.
  // NOLINTNEXTLINE(misc-new-delete-overloads)
  static void operator delete(void* memory) noexcept { ::operator delete(memory); }

  explicit Block(std::size_t size) noexcept : capacity(static_cast<Length>(size)) {}

  char* texts() { return reinterpret_cast<char*>(this + 1); }
  // Length i is at -1 - i.
  Length* lengths() { return reinterpret_cast<Length*>(texts() + capacity); }

  const Length capacity;
  std::unique_ptr<Fragments> fragments;
};

boost::intrusive_ptr<TextPage::Block> TextPage::Block::make(std::size_t capacity) {
  // Allocators round up to this.
  constexpr std::size_t unit = 16;
  static_assert(unit % alignof(Length) == 0);
  capacity = (capacity + unit - 1) / unit * unit;
  void* memory = ::operator new(sizeof(Block) + capacity);
  return boost::intrusive_ptr<Block>(::new (memory) Block(capacity));
}

boost::intrusive_ptr<TextPage::Block> TextPage::Block::makeIn(TextPool::Memory memory) {
  return boost::intrusive_ptr<Block>(::new (memory.start) Block(memory.size - sizeof(Block)));
}

TextPage::TextPage() = default;

TextPage::TextPage(const TextPage& source) : block_(source.block_), extent_(source.extent_) {
  assert(!extent_.isPooled);
}

TextPage::TextPage(TextPage&& source) noexcept { *this = std::move(source); }

TextPage& TextPage::operator=(TextPage&& source) noexcept {
  block_.swap(source.block_);
  std::swap(extent_, source.extent_);
  return *this;
}

TextPage::~TextPage() {
  if (extent_.isPooled) block_.detach();
}

bool TextPage::append(const char* text, std::size_t length, TextPool* pool) {
  assert(length <= maxLength);
  const std::size_t size = sizeWith(length);
  const bool fits = block_ && size <= block_->capacity && block_->use_count() == 1;
  if (!fits && !reserve(size, pool)) return false;
  std::memcpy(block_->texts() + extent_.textSize, text, length);
  extent_.textSize += static_cast<Length>(length);
  ++extent_.pieceCount;
  *(block_->lengths() - extent_.pieceCount) = static_cast<Length>(length);
  return true;
}

void TextPage::undoAppend() {
  extent_.textSize -= static_cast<Length>(length(pieceCount() - 1));
  --extent_.pieceCount;
}

TextPage TextPage::next(std::size_t length) const {
  TextPage page;
  const bool isFull = sizeWith(length) > block_->capacity;
  if (isFull && block_->capacity >= largestCapacity) {
    page.block_ = Block::make(std::max(largestCapacity, page.sizeWith(length)));
  }
  return page;
}

void TextPage::moveOutOf(TextPool* pool) {
  if (extent_.isPooled) relocate(Block::make(sizeWith(0)), false, pool);
}

void TextPage::shrinkToFit(TextPool* pool) {
  const std::size_t size = sizeWith(0);
  if (!block_ || block_->use_count() != 1 || block_->capacity < size + smallestSaving) return;
  if (extent_.isPooled) {
    relocate(Block::makeIn(pool->cut(sizeof(Block) + size)), true, pool);
  } else {
    relocate(Block::make(size), false, pool);
  }
}

void TextPage::clear(TextPool* pool) {
  releaseBlock(pool);
  extent_ = Extent{};
}

std::string_view TextPage::text() const {
  return block_ ? std::string_view(block_->texts(), extent_.textSize) : std::string_view();
}

std::size_t TextPage::length(std::size_t index) const {
  assert(index < pieceCount());
  return *(block_->lengths() - 1 - index);
}

const FileSectionFragment& TextPage::fragment(std::size_t index) const {
  assert(index < pieceCount() && !extent_.isPooled);
  auto& fragments = block_->fragments;
  if (!fragments) fragments = std::make_unique<Block::Fragments>();
  while (fragments->pieces.size() <= index) {
    const std::size_t size = length(fragments->pieces.size());
    fragments->pieces.emplace_back(std::string(block_->texts() + fragments->textSize, size));
    fragments->textSize += size;
  }
  return fragments->pieces[index];
}

std::size_t TextPage::sizeWith(std::size_t length) const {
  return extent_.textSize + length + (pieceCount() + 1) * sizeof(Length);
}

// Not inlined, so that append() is short enough to be.
[[gnu::noinline]] bool TextPage::reserve(std::size_t size, TextPool* pool) {
  if (block_ && (block_->use_count() != 1 || block_->capacity >= largestCapacity)) return false;
  // Text that was moved out of the pool stays out: it may have fragments.
  const bool mayUsePool = pool != nullptr && (!block_ || extent_.isPooled);
  if (mayUsePool && sizeof(Block) + size <= TextPool::largestSize) {
    relocate(Block::makeIn(pool->allocate(sizeof(Block) + size)), true, pool);
  } else {
    const std::size_t capacity = block_ ? capacityAfter(block_->capacity) : firstCapacity;
    relocate(Block::make(std::max(capacity, size)), false, pool);
  }
  return true;
}

void TextPage::relocate(boost::intrusive_ptr<Block> block, bool isPooled, TextPool* pool) {
  if (block_) {
    const std::size_t count = pieceCount();
    std::memcpy(block->texts(), block_->texts(), extent_.textSize);
    std::memcpy(block->lengths() - count, block_->lengths() - count, count * sizeof(Length));
    block->fragments = std::move(block_->fragments);
    releaseBlock(pool);
  }
  block_ = std::move(block);
  extent_.isPooled = isPooled;
}

void TextPage::releaseBlock(TextPool* pool) {
  if (!extent_.isPooled) {
    block_.reset();
    return;
  }
  const std::size_t size = sizeof(Block) + block_->capacity;
  pool->deallocate({block_.detach(), size});
}

}  // namespace Varn::detail
