#ifndef VARN_SECTIONS_TEXTPOOL_HPP
#define VARN_SECTIONS_TEXTPOOL_HPP

#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <vector>

namespace Varn {

// Memory for the short texts of all sections of a repository: blocks of a few sizes, cut one after
// the other from large chunks, so that the sections of a file lie side by side, taking a block
// costs next to nothing, and all of them end with the pool, without a look at any. The chunks of a
// large pool ask the system for huge pages, since to touch new memory page by page would cost more
// than to fill it.
//
// Blocks that are given back are taken again by whoever needs one of their size; the chunks stay
// until the pool ends. A pool is used by one thread at a time.
class TextPool {
 public:
  // In bytes, ascending.
  static constexpr std::array<std::size_t, 5> sizes = {64, 576, 1088, 1600, 2112};
  static constexpr std::size_t largestSize = sizes.back();

  struct Memory {
    void* start;
    std::size_t size;
  };

  TextPool() = default;
  TextPool(const TextPool&) = delete;
  TextPool& operator=(const TextPool&) = delete;
  ~TextPool() = default;

  // A block of the smallest size that holds `size` bytes, which is at most largestSize, aligned for
  // every type. Throws std::bad_alloc.
  Memory take(std::size_t size);
  // `memory` was taken and is of no more use.
  void giveBack(Memory memory);

 private:
  struct FreeBlock {
    FreeBlock* next;
  };
  struct DeleteAligned {
    std::align_val_t alignment;
    void operator()(char* memory) const { ::operator delete(memory, alignment); }
  };
  using Chunk = std::unique_ptr<char, DeleteAligned>;

  void addChunk();

  std::array<FreeBlock*, sizes.size()> free_{};
  std::vector<Chunk> chunks_;
  // Of all chunks together.
  std::size_t size_ = 0;
  // What is left of the last chunk.
  char* next_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace Varn

#endif
