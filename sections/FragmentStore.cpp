#include "varn/detail/FragmentStore.hpp"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <optional>
#include <ostream>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <boost/make_shared.hpp>

#include <varn/StringFileSectionFragment.hpp>

#include "sections/LockedStream.hpp"

namespace Varn::detail {
namespace {

using FragmentPtr = boost::shared_ptr<FileSectionFragment>;

// A page, or one fragment that was appended as an object.
struct Segment {
  // The position of its first fragment.
  std::size_t first;
  std::variant<TextPage, FragmentPtr> holder;
};

}  // namespace

struct FragmentStore::Rest {
  std::vector<Segment> segments;
  // The number of fragments in them.
  std::size_t size = 0;
  std::string whole;
};

FragmentStore::FragmentStore() = default;

FragmentStore::FragmentStore(const FragmentStore& source) : page_(source.sharedPage()) {
  if (source.sizeBeforePage() == 0) return;
  rest_ = std::make_unique<Rest>(Rest{source.rest_->segments, source.rest_->size, {}});
}

FragmentStore::~FragmentStore() = default;

template <typename OnPage, typename OnFragment>
void FragmentStore::visit(OnPage onPage, OnFragment onFragment) const {
  if (rest_) {
    for (const Segment& segment : rest_->segments) {
      if (const auto* page = std::get_if<TextPage>(&segment.holder)) {
        onPage(*page);
      } else {
        onFragment(*std::get<FragmentPtr>(segment.holder));
      }
    }
  }
  if (page_.pieceCount() != 0) onPage(page_);
}

void FragmentStore::append(const char* text, std::size_t length) {
  if (length > TextPage::maxLength || !page_.append(text, length, pool_)) {
    appendBehindPage(text, length);
  }
}

// Not inlined, so that append() is short enough to be.
[[gnu::noinline]] void FragmentStore::appendBehindPage(const char* text, std::size_t length) {
  if (length > TextPage::maxLength) {
    append(boost::make_shared<StringFileSectionFragment>(std::string(text, length)));
    return;
  }
  TextPage next = page_.next(length);
  closePage();
  page_ = std::move(next);
  page_.append(text, length, pool_);
}

void FragmentStore::append(FragmentPtr fragment) {
  closePage();
  Rest& before = rest();
  before.segments.push_back({before.size, std::move(fragment)});
  ++before.size;
  before.whole.clear();
}

void FragmentStore::undoAppend() {
  assert(size() != 0);
  if (page_.pieceCount() != 0) {
    page_.undoAppend();
  } else {
    rest_->segments.pop_back();
    --rest_->size;
  }
}

void FragmentStore::clear() {
  page_.clear(pool_);
  if (!rest_) return;
  rest_->segments.clear();
  rest_->size = 0;
}

std::size_t FragmentStore::size() const { return sizeBeforePage() + page_.pieceCount(); }

const FileSectionFragment& FragmentStore::fragment(std::size_t index) const {
  assert(index < size());
  if (index >= sizeBeforePage()) return sharedPage().fragment(index - sizeBeforePage());
  const std::vector<Segment>& segments = rest_->segments;
  const auto after =
      std::upper_bound(segments.begin(), segments.end(), index,
                       [](std::size_t i, const Segment& segment) { return i < segment.first; });
  const Segment& segment = *std::prev(after);
  if (const auto* page = std::get_if<TextPage>(&segment.holder)) {
    return page->fragment(index - segment.first);
  }
  return *std::get<FragmentPtr>(segment.holder);
}

const std::string& FragmentStore::whole() const {
  static const std::string empty;
  if (!rest_ && page_.pieceCount() == 0) return empty;
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

std::string_view FragmentStore::wholeInPlace() const {
  return sizeBeforePage() == 0 ? page_.text() : std::string_view(whole());
}

void FragmentStore::print(std::ostream& os) const {
  const auto put = [&os](std::string_view text) {
    os.write(text.data(), static_cast<std::streamsize>(text.size()));
  };
  visit([&put](const TextPage& page) { put(page.text()); },
        [&put](const FileSectionFragment& fragment) { put(fragment.getContent()); });
}

void FragmentStore::write(FILE* stream) const {
  std::optional<LockedStream> out;
  visit(
      [stream, &out](const TextPage& page) {
        if (page.text().empty()) return;
        if (!out) out.emplace(stream);
        out->write(page);
      },
      [stream](const FileSectionFragment& fragment) { fragment.writeToFile(stream); });
}

std::size_t FragmentStore::sizeBeforePage() const { return rest_ ? rest_->size : 0; }

void FragmentStore::closePage() {
  const std::size_t count = page_.pieceCount();
  if (count == 0) return;
  Rest& before = rest();
  before.segments.push_back({before.size, sharedPage()});
  before.size += count;
  page_ = TextPage();
}

const TextPage& FragmentStore::sharedPage() const {
  page_.moveOutOf(pool_);
  return page_;
}

FragmentStore::Rest& FragmentStore::rest() const {
  if (!rest_) rest_ = std::make_unique<Rest>();
  return *rest_;
}

}  // namespace Varn::detail
