// Preloaded with faults.cpp: counts the allocations of a program that has one thread, and has the
// armed one fail. Then all others succeed, or memory is exhausted: what is freed can be allocated
// again, and no more. The interpreter itself is known to crash then: it ends with a code of its
// own.

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <dlfcn.h>
#include <execinfo.h>
#include <malloc.h>
#include <unistd.h>

// The allocator of the C library, which the functions below take the place of.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);

// How many allocations succeed before one fails; negative: all of them.
long faults_allocations = -1;
long faults_exhausted = 0;
// The number of blocks that are allocated.
long faults_blocks = 0;
}

namespace {

std::size_t freed = 0;

bool fails(std::size_t size) {
  if (faults_allocations != 0) {
    if (faults_allocations > 0) --faults_allocations;
    return false;
  }
  if (faults_exhausted == 0) faults_allocations = -1;
  if (faults_exhausted != 0 && size <= freed) {
    freed -= size;
    return false;
  }
  errno = ENOMEM;
  return true;
}

std::array<void*, 30> frames;

// Whether the interpreter's own code has crashed, or what it called of the C library.
bool isInterpretersCrash() {
  const int depth = backtrace(frames.data(), static_cast<int>(frames.size()));
  // The first two are the handler's.
  for (int i = 2; i < depth; ++i) {
    Dl_info place;
    if (dladdr(frames[static_cast<std::size_t>(i)], &place) == 0) continue;
    if (std::strstr(place.dli_fname, "/libc.") == nullptr) {
      return std::strstr(place.dli_fname, "/python3") != nullptr &&
             std::strstr(place.dli_fname, ".so") == nullptr;
    }
  }
  return false;
}

void onCrash(int signal) {
  if (isInterpretersCrash()) _exit(86);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void* counted(void* memory) {
  if (memory != nullptr) ++faults_blocks;
  return memory;
}

}  // namespace

extern "C" {

void faults_watch_crashes() {
  // The first call allocates.
  static_cast<void>(backtrace(frames.data(), 1));
  for (const int signal : {SIGSEGV, SIGABRT, SIGBUS}) std::signal(signal, onCrash);
}

void* malloc(std::size_t size) { return fails(size) ? nullptr : counted(__libc_malloc(size)); }

void* calloc(std::size_t count, std::size_t size) {
  return fails(count * size) ? nullptr : counted(__libc_calloc(count, size));
}

void* realloc(void* memory, std::size_t size) {
  if (memory == nullptr) return malloc(size);
  const std::size_t old = malloc_usable_size(memory);
  return size > old && fails(size - old) ? nullptr : __libc_realloc(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return fails(size) ? nullptr : counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  *memory = memalign(alignment, size);
  return *memory == nullptr ? ENOMEM : 0;
}

void free(void* memory) {
  if (memory == nullptr) return;
  --faults_blocks;
  freed = faults_allocations == 0 ? freed + malloc_usable_size(memory) : 0;
  __libc_free(memory);
}
}
