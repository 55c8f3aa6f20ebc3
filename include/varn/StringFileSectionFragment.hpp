#ifndef VARN_STRINGFILESECTIONFRAGMENT_HPP
#define VARN_STRINGFILESECTIONFRAGMENT_HPP

#include <string>

#include <varn/Export.hpp>
#include <varn/FileSectionFragment.hpp>

namespace Varn {

// A piece of literal text.
class VARN_EXPORT StringFileSectionFragment : public FileSectionFragment {
 public:
  StringFileSectionFragment();
  // The text up to the first NUL; `text` must not be null.
  StringFileSectionFragment(const char* text);  // NOLINT(google-explicit-constructor)
  // The whole text, NUL bytes included.
  StringFileSectionFragment(const std::string& text);  // NOLINT(google-explicit-constructor)
  StringFileSectionFragment(std::string&& text);       // NOLINT(google-explicit-constructor)
  // No moves: a moved-from fragment would change the sections that share it.
  StringFileSectionFragment(const StringFileSectionFragment&);
  StringFileSectionFragment& operator=(const StringFileSectionFragment&);
  ~StringFileSectionFragment() override;

  const std::string& getContent() const override;
  // One `fwrite` of what getContent() returns.
  void writeToFile(FILE* stream) const override;

 private:
  std::string content_;
};

}  // namespace Varn

#endif
