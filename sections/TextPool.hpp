#ifndef VARN_SECTIONS_TEXTPOOL_HPP
#define VARN_SECTIONS_TEXTPOOL_HPP

#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <vector>

#include <varn/FileSection.hpp>
#include <varn/VarnFileContent.hpp>

namespace Varn::detail {

// The arena for the short texts of all sections of a repository: blocks of a few size classes, cut
// from large chunks, and for the sections themselves. The sections of a file are adjacent in
// memory, allocation is a pointer bump, and destroying the pool visits no block. Large pools ask
// for huge pages, because the first touch of new memory costs more than filling it.
//
// Deallocated blocks are reused for their size class; chunks are freed with the pool.
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

  // A block of the smallest class that holds `size` bytes, at most largestSize, aligned for every
  // type. Throws std::bad_alloc.
  Memory allocate(std::size_t size);
  // A block of `size` bytes, or a few more, at most largestSize.
  Memory cut(std::size_t size);
  // `memory` is what allocate() or cut() returned.
  void deallocate(Memory memory);

  // From now on `section` allocates its short texts here. The pool must outlive it.
  void serve(FileSection& section) { section.store_.usePool(*this); }
  // From now on `content` makes its sections here. The pool must outlive it.
  void serve(VarnFileContent& content) { content.pool_ = this; }
  // Frees most of the memory that the sections of `content` keep for further texts.
  static void shrinkToFit(VarnFileContent& content);

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
  // The bytes of all chunks.
  std::size_t size_ = 0;
  // The unused rest of the last chunk.
  char* next_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace Varn::detail

#endif
