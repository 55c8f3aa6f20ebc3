#include "varn/FileSectionFragment.hpp"

namespace Varn {

FileSectionFragment::FileSectionFragment() = default;
FileSectionFragment::FileSectionFragment(const FileSectionFragment&) = default;
FileSectionFragment& FileSectionFragment::operator=(const FileSectionFragment&) = default;
FileSectionFragment::~FileSectionFragment() = default;

}  // namespace Varn
