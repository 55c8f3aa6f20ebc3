#include "sections/FragmentStore.hpp"

#include <algorithm>
#include <cassert>
#include <ostream>
#include <string_view>
#include <utility>

#include <boost/make_shared.hpp>

#include <varn/StringFileSectionFragment.hpp>

namespace Varn {
namespace {

// Most sections hold a few short pieces: the first page is small, and each one after it is twice as
// large as the one before until pages are large enough for their number not to matter.
constexpr std::size_t firstPageCapacity = 64;
constexpr std::size_t largestPageCapacity = std::size_t{64} * 1024;

// Keeps a stream locked, so that each piece is written without taking the lock again.
class StreamLock {
 public:
  explicit StreamLock(FILE* stream) : stream_(stream) { ::flockfile(stream_); }
  StreamLock(const StreamLock&) = delete;
  StreamLock& operator=(const StreamLock&) = delete;
  ~StreamLock() { ::funlockfile(stream_); }

 private:
  FILE* stream_;
};

}  // namespace

FragmentStore::FragmentStore(const FragmentStore& source)
    : segments_(source.segments_), size_(source.size_) {}

void FragmentStore::append(const char* text, std::size_t length) {
  if (TextPage* page = openPage(length)) {
    page->append(text, length);
  } else if (length > TextPage::maxLength) {
    append(boost::make_shared<StringFileSectionFragment>(std::string(text, length)));
    return;
  } else {
    PagePtr added = TextPage::make(nextPageCapacity(), length);
    added->append(text, length);
    segments_.push_back({size_, std::move(added)});
  }
  ++size_;
}

void FragmentStore::append(FragmentPtr fragment) {
  segments_.push_back({size_, std::move(fragment)});
  ++size_;
}

void FragmentStore::clear() {
  segments_.clear();
  size_ = 0;
}

const FileSectionFragment& FragmentStore::fragment(std::size_t index) const {
  assert(index < size_);
  const auto after =
      std::upper_bound(segments_.begin(), segments_.end(), index,
                       [](std::size_t i, const Segment& segment) { return i < segment.first; });
  const Segment& segment = *std::prev(after);
  if (const auto* page = std::get_if<PagePtr>(&segment.holder)) {
    return (*page)->fragment(index - segment.first);
  }
  return *std::get<FragmentPtr>(segment.holder);
}

const std::string& FragmentStore::whole() const {
  std::size_t length = 0;
  for (const Segment& segment : segments_) {
    if (const auto* page = std::get_if<PagePtr>(&segment.holder)) length += (*page)->text().size();
  }
  whole_.clear();
  whole_.reserve(length);
  for (const Segment& segment : segments_) {
    if (const auto* page = std::get_if<PagePtr>(&segment.holder)) {
      whole_.append((*page)->text());
    } else {
      whole_.append(std::get<FragmentPtr>(segment.holder)->getContent());
    }
  }
  return whole_;
}

void FragmentStore::print(std::ostream& os) const {
  const auto put = [&os](std::string_view text) {
    os.write(text.data(), static_cast<std::streamsize>(text.size()));
  };
  for (const Segment& segment : segments_) {
    if (const auto* page = std::get_if<PagePtr>(&segment.holder)) {
      (*page)->forEachPiece(put);
    } else {
      put(std::get<FragmentPtr>(segment.holder)->getContent());
    }
  }
}

void FragmentStore::write(FILE* stream) const {
  const StreamLock lock(stream);
  const auto put = [stream](std::string_view text) {
    static_cast<void>(::fwrite_unlocked(text.data(), text.size(), 1, stream));
  };
  for (const Segment& segment : segments_) {
    if (const auto* page = std::get_if<PagePtr>(&segment.holder)) {
      (*page)->forEachPiece(put);
    } else {
      std::get<FragmentPtr>(segment.holder)->writeToFile(stream);
    }
  }
}

TextPage* FragmentStore::openPage(std::size_t length) const {
  if (segments_.empty() || length > TextPage::maxLength) return nullptr;
  const auto* page = std::get_if<PagePtr>(&segments_.back().holder);
  if (page == nullptr || (*page)->use_count() != 1 || !(*page)->fits(length)) return nullptr;
  return page->get();
}

std::size_t FragmentStore::nextPageCapacity() const {
  if (segments_.empty()) return firstPageCapacity;
  const auto* page = std::get_if<PagePtr>(&segments_.back().holder);
  if (page == nullptr) return firstPageCapacity;
  return std::min(2 * (*page)->capacity(), largestPageCapacity);
}

}  // namespace Varn
