#include <algorithm>
#include <cassert>
#include <iterator>
#include <ostream>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <boost/make_shared.hpp>

#include <varn/FragmentStore.hpp>
#include <varn/StringFileSectionFragment.hpp>

#include "sections/TextPage.hpp"

namespace Varn {
namespace {

using PagePtr = boost::intrusive_ptr<TextPage>;
using FragmentPtr = boost::shared_ptr<FileSectionFragment>;

// Most sections hold a few short pieces: a section's first page is small and grows with it, by half
// or a little more, until pages are large enough for their number not to matter.
constexpr std::size_t firstPageCapacity = 64;
constexpr std::size_t smallestGrowth = 512;
constexpr std::size_t largestPageCapacity = std::size_t{64} * 1024;

std::size_t capacityAfter(std::size_t capacity) {
  return std::min(capacity + std::max(capacity / 2, smallestGrowth), largestPageCapacity);
}

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

// A page, or one fragment that came as an object.
struct Segment {
  // The position of its first fragment.
  std::size_t first;
  std::variant<PagePtr, FragmentPtr> holder;
};

}  // namespace

struct FragmentStore::Rest {
  std::vector<Segment> segments;
  // The number of fragments in them.
  std::size_t size = 0;
  std::string whole;
};

FragmentStore::FragmentStore() = default;

FragmentStore::FragmentStore(const FragmentStore& source) : page_(source.page_) {
  if (source.sizeBeforePage() == 0) return;
  rest().segments = source.rest_->segments;
  rest_->size = source.rest_->size;
}

FragmentStore::~FragmentStore() = default;

template <typename OnPage, typename OnFragment>
void FragmentStore::visit(OnPage onPage, OnFragment onFragment) const {
  if (rest_) {
    for (const Segment& segment : rest_->segments) {
      if (const auto* page = std::get_if<PagePtr>(&segment.holder)) {
        onPage(**page);
      } else {
        onFragment(*std::get<FragmentPtr>(segment.holder));
      }
    }
  }
  if (page_) onPage(*page_);
}

void FragmentStore::append(const char* text, std::size_t length) {
  if (length > TextPage::maxLength) {
    append(boost::make_shared<StringFileSectionFragment>(std::string(text, length)));
  } else {
    pageFor(length).append(text, length);
  }
}

void FragmentStore::append(FragmentPtr fragment) {
  closePage();
  Rest& before = rest();
  before.segments.push_back({before.size, std::move(fragment)});
  ++before.size;
  before.whole.clear();
}

void FragmentStore::clear() {
  page_.reset();
  if (!rest_) return;
  rest_->segments.clear();
  rest_->size = 0;
}

std::size_t FragmentStore::size() const {
  return sizeBeforePage() + (page_ ? page_->pieceCount() : 0);
}

const FileSectionFragment& FragmentStore::fragment(std::size_t index) const {
  assert(index < size());
  if (index >= sizeBeforePage()) return page_->fragment(index - sizeBeforePage());
  const std::vector<Segment>& segments = rest_->segments;
  const auto after =
      std::upper_bound(segments.begin(), segments.end(), index,
                       [](std::size_t i, const Segment& segment) { return i < segment.first; });
  const Segment& segment = *std::prev(after);
  if (const auto* page = std::get_if<PagePtr>(&segment.holder)) {
    return (*page)->fragment(index - segment.first);
  }
  return *std::get<FragmentPtr>(segment.holder);
}

const std::string& FragmentStore::whole() const {
  static const std::string empty;
  if (!rest_ && !page_) return empty;
  std::size_t length = 0;
  visit([&length](const TextPage& page) { length += page.text().size(); },
        [](const FileSectionFragment&) {});
  std::string& text = rest().whole;
  text.clear();
  text.reserve(length);
  visit([&text](const TextPage& page) { text.append(page.text()); },
        [&text](const FileSectionFragment& fragment) { text.append(fragment.getContent()); });
  return text;
}

void FragmentStore::print(std::ostream& os) const {
  const auto put = [&os](std::string_view text) {
    os.write(text.data(), static_cast<std::streamsize>(text.size()));
  };
  visit([&put](const TextPage& page) { page.forEachPiece(put); },
        [&put](const FileSectionFragment& fragment) { put(fragment.getContent()); });
}

void FragmentStore::write(FILE* stream) const {
  const StreamLock lock(stream);
  const auto put = [stream](std::string_view text) {
    static_cast<void>(::fwrite_unlocked(text.data(), text.size(), 1, stream));
  };
  visit([&put](const TextPage& page) { page.forEachPiece(put); },
        [stream](const FileSectionFragment& fragment) { fragment.writeToFile(stream); });
}

std::size_t FragmentStore::sizeBeforePage() const { return rest_ ? rest_->size : 0; }

TextPage& FragmentStore::pageFor(std::size_t length) {
  PagePtr added;
  if (!page_ || page_->use_count() != 1) {
    added = TextPage::make(firstPageCapacity, length);
  } else if (page_->fits(length)) {
    return *page_;
  } else if (page_->textCapacity() < largestPageCapacity) {
    page_ = page_->grown(capacityAfter(page_->textCapacity()), length);
    return *page_;
  } else {
    added = page_->next(largestPageCapacity, length);
  }
  closePage();
  page_ = std::move(added);
  return *page_;
}

void FragmentStore::closePage() {
  if (!page_) return;
  Rest& before = rest();
  const std::size_t count = page_->pieceCount();
  before.segments.push_back({before.size, page_});
  before.size += count;
  page_.reset();
}

FragmentStore::Rest& FragmentStore::rest() const {
  if (!rest_) rest_ = std::make_unique<Rest>();
  return *rest_;
}

}  // namespace Varn
