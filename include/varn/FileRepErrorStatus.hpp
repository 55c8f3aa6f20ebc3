#ifndef VARN_FILEREPERRORSTATUS_HPP
#define VARN_FILEREPERRORSTATUS_HPP

#include <string>

namespace Varn {

// What the check for duplicate file names found. A fresh status reports nothing.
class FileRepErrorStatus {
 public:
  bool hadError() const { return hadError_; }
  void setHadError(bool hadError) { hadError_ = hadError; }
  bool isWarning() const { return isWarning_; }
  void setIsWarning(bool isWarning) { isWarning_ = isWarning; }
  const std::string& getMessage() const { return message_; }
  void setMessage(const std::string& message) { message_ = message; }

 private:
  // Assigned first: the only member whose assignment can fail.
  std::string message_;
  bool hadError_ = false;
  bool isWarning_ = false;
};

}  // namespace Varn

#endif
