#include "varn/FileRepErrorStatus.hpp"

namespace Varn {

FileRepErrorStatus::FileRepErrorStatus() = default;
FileRepErrorStatus::FileRepErrorStatus(const FileRepErrorStatus&) = default;
FileRepErrorStatus& FileRepErrorStatus::operator=(const FileRepErrorStatus&) = default;
FileRepErrorStatus::~FileRepErrorStatus() = default;

bool FileRepErrorStatus::hadError() const { return hadError_; }
void FileRepErrorStatus::setHadError(bool hadError) { hadError_ = hadError; }
bool FileRepErrorStatus::isWarning() const { return isWarning_; }
void FileRepErrorStatus::setIsWarning(bool isWarning) { isWarning_ = isWarning; }
const std::string& FileRepErrorStatus::getMessage() const { return message_; }
void FileRepErrorStatus::setMessage(const std::string& message) { message_ = message; }

}  // namespace Varn
