#ifndef VARN_FILEREPERRORSTATUS_HPP
#define VARN_FILEREPERRORSTATUS_HPP

#include <string>

#include <varn/Export.hpp>

namespace Varn {

// The result of the check for duplicate file names. A new status reports nothing.
class VARN_EXPORT FileRepErrorStatus {
 public:
  FileRepErrorStatus();
  FileRepErrorStatus(const FileRepErrorStatus&);
  FileRepErrorStatus& operator=(const FileRepErrorStatus&);
  ~FileRepErrorStatus();

  bool hadError() const;
  void setHadError(bool hadError);
  bool isWarning() const;
  void setIsWarning(bool isWarning);
  const std::string& getMessage() const;
  void setMessage(const std::string& message);

 private:
  // Assigned first: the only member whose assignment can fail.
  std::string message_;
  bool hadError_ = false;
  bool isWarning_ = false;
};

}  // namespace Varn

#endif
