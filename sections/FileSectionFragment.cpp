#include <varn/FileSectionFragment.hpp>

namespace Varn {

FileSectionFragment::~FileSectionFragment() = default;

}  // namespace Varn
