#include "python/orv/native/Stream.hpp"

#include <cerrno>
#include <stdexcept>
#include <utility>

namespace orv {
namespace {

// The C library may fail without saying why.
int reasonOr(int reason) { return reason != 0 ? reason : EIO; }

}  // namespace

Stream Stream::create(const std::string& path) {
  return Stream(path, std::fopen(path.c_str(), "wbxe"));
}

Stream::Stream(std::string path, FILE* file) : path_(std::move(path)), file_(file) {
  if (file == nullptr) fail(errno);
}

void Stream::write(const std::function<void(FILE*)>& write) {
  FILE* file = require();
  errno = 0;
  write(file);
  if (std::ferror(file) != 0) fail(errno);
}

void Stream::flush() {
  errno = 0;
  if (std::fflush(require()) != 0) fail(errno);
}

void Stream::close() {
  if (!file_) return;
  errno = 0;
  if (std::fclose(file_.release()) != 0) fail(errno);
}

FILE* Stream::require() const {
  if (!file_) throw std::logic_error("the stream to " + path_ + " is closed");
  return file_.get();
}

void Stream::fail(int reason) const { throw StreamError(reasonOr(reason), path_); }

}  // namespace orv
