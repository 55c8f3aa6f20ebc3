#include "varn/StringFileSectionFragment.hpp"

#include <utility>

namespace Varn {

StringFileSectionFragment::StringFileSectionFragment() = default;

StringFileSectionFragment::StringFileSectionFragment(const char* text) : content_(text) {}

StringFileSectionFragment::StringFileSectionFragment(const std::string& text) : content_(text) {}

StringFileSectionFragment::StringFileSectionFragment(std::string&& text)
    : content_(std::move(text)) {}

StringFileSectionFragment::StringFileSectionFragment(const StringFileSectionFragment&) = default;

StringFileSectionFragment& StringFileSectionFragment::operator=(const StringFileSectionFragment&) =
    default;

StringFileSectionFragment::~StringFileSectionFragment() = default;

const std::string& StringFileSectionFragment::getContent() const { return content_; }

void StringFileSectionFragment::writeToFile(FILE* stream) const {
  const std::string& text = getContent();
  static_cast<void>(std::fwrite(text.data(), text.size(), 1, stream));
}

}  // namespace Varn
