#ifndef VARN_STRINGFILESECTIONFRAGMENT_HPP
#define VARN_STRINGFILESECTIONFRAGMENT_HPP

#include <string>

#include <varn/Export.hpp>
#include <varn/FileSectionFragment.hpp>

namespace Varn {

// A piece of literal text.
class VARN_EXPORT StringFileSectionFragment : public FileSectionFragment {
 public:
  StringFileSectionFragment() = default;
  // The text up to the first NUL; `text` must not be null.
  StringFileSectionFragment(const char* text);  // NOLINT(google-explicit-constructor)
  // The whole text, NUL bytes included; the second form takes it over without copying.
  StringFileSectionFragment(const std::string& text);  // NOLINT(google-explicit-constructor)
  StringFileSectionFragment(std::string&& text);       // NOLINT(google-explicit-constructor)
  // A fragment whose text could be moved away would break the sections that share it: only copies.
  StringFileSectionFragment(const StringFileSectionFragment&) = default;
  StringFileSectionFragment& operator=(const StringFileSectionFragment&) = default;
  ~StringFileSectionFragment() override;

  const std::string& getContent() const override;
  // One `fwrite` of the text that getContent() answers.
  void writeToFile(FILE* stream) const override;

 private:
  std::string content_;
};

}  // namespace Varn

#endif
