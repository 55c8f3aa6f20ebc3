#include "sections/TextPool.hpp"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <new>
#include <utility>

#include <sys/mman.h>

namespace Varn::detail {
namespace {

// A pool doubles within bounds; a large one grows by one huge page at a time.
constexpr std::size_t smallestChunk = std::size_t{4} * 1024;
constexpr std::size_t largestChunk = std::size_t{64} * 1024;
constexpr std::size_t hugePage = std::size_t{2} * 1024 * 1024;

std::size_t sizeClass(std::size_t size) {
  return static_cast<std::size_t>(
      std::lower_bound(TextPool::sizes.begin(), TextPool::sizes.end(), size) -
      TextPool::sizes.begin());
}

}  // namespace

TextPool::Memory TextPool::allocate(std::size_t size) {
  assert(size <= largestSize);
  const std::size_t index = sizeClass(size);
  FreeBlock* block = free_[index];
  if (block == nullptr) return cut(sizes[index]);
  free_[index] = block->next;
  return {block, sizes[index]};
}

TextPool::Memory TextPool::cut(std::size_t size) {
  constexpr std::size_t unit = alignof(std::max_align_t);
  assert(size <= largestSize);
  size = (size + unit - 1) / unit * unit;
  if (left_ < size) addChunk();
  void* start = next_;
  next_ += size;
  left_ -= size;
  return {start, size};
}

void TextPool::deallocate(Memory memory) {
  std::size_t index = sizeClass(memory.size);
  if (sizes[index] != memory.size) {
    // One that was cut serves the class below, if there is any.
    if (index == 0) return;
    --index;
  }
  free_[index] = ::new (memory.start) FreeBlock{free_[index]};
}

void TextPool::shrinkToFit(VarnFileContent& content) {
  for (const auto& section : content.sections_) {
    if (section) section->store_.shrinkToFit();
  }
}

void TextPool::addChunk() {
  const bool isHuge = size_ >= 2 * hugePage;
  const std::size_t size = isHuge ? hugePage : std::clamp(size_, smallestChunk, largestChunk);
  const std::align_val_t alignment{isHuge ? hugePage : alignof(std::max_align_t)};
  Chunk chunk(static_cast<char*>(::operator new(size, alignment)), DeleteAligned{alignment});
  // Best effort: failure only costs speed.
  if (isHuge) static_cast<void>(::madvise(chunk.get(), size, MADV_HUGEPAGE));
  chunks_.push_back(std::move(chunk));
  next_ = chunks_.back().get();
  left_ = size;
  size_ += size;
}

}  // namespace Varn::detail
