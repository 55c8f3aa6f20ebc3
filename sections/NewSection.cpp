#include "sections/NewSection.hpp"

#include <cstddef>

#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>

#include "sections/TextPool.hpp"

namespace Varn {
namespace {

// A section in the memory of a pool: deleting it runs its destructor, and the pool frees the
// memory.
template <class Section>
class PooledSection final : public Section {
 public:
  static void* operator new(std::size_t size, detail::TextPool& pool) {
    return pool.cut(size).start;
  }
  static void operator delete(void* /*memory*/, detail::TextPool& /*pool*/) noexcept {}
  // The matching operator new is the one with a pool.
  // NOLINTNEXTLINE(misc-new-delete-overloads)
  static void operator delete(void* /*memory*/) noexcept {}
};

template <class Section>
std::unique_ptr<FileSection> newSectionOf(detail::TextPool* pool) {
  if (pool == nullptr) return std::make_unique<Section>();
  std::unique_ptr<FileSection> section(new (*pool) PooledSection<Section>);
  pool->serve(*section);
  return section;
}

}  // namespace

std::unique_ptr<FileSection> newSection(SectionClass sectionClass, detail::TextPool* pool) {
  switch (sectionClass) {
    case SectionClass::Includes:
      return newSectionOf<IncludesSection>(pool);
    case SectionClass::Functions:
      return newSectionOf<FunctionsSection>(pool);
    case SectionClass::Plain:
      break;
  }
  return newSectionOf<FileSection>(pool);
}

}  // namespace Varn
