#ifndef ORV_STREAM_HPP
#define ORV_STREAM_HPP

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <system_error>

namespace orv {

// A C output stream on a file of the file system. Every failure throws StreamError, at
// the latest by close(); a stream that is destroyed without close() drops what was not written.
class Stream {
 public:
  // Creates the file `path`, which must not exist yet.
  static Stream create(const std::string& path);

  // Calls `write` on the C stream. Throws std::logic_error once the stream is closed.
  void write(const std::function<void(FILE*)>& write);
  void flush();
  // The stream is closed even when this throws. Closing it again does nothing.
  void close();

  const std::string& path() const { return path_; }

 private:
  struct Closer {
    void operator()(FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
  };

  Stream(std::string path, FILE* file);
  FILE* require() const;
  [[noreturn]] void fail(int reason) const;

  std::string path_;
  std::unique_ptr<FILE, Closer> file_;
};

// What the system said about a stream.
class StreamError : public std::system_error {
 public:
  StreamError(int reason, const std::string& path)
      : std::system_error(reason, std::generic_category(), path),
        path_(std::make_shared<const std::string>(path)) {}

  const std::string& path() const { return *path_; }

 private:
  std::shared_ptr<const std::string> path_;
};

}  // namespace orv

#endif
