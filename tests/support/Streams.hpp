#ifndef VARN_TESTS_SUPPORT_STREAMS_HPP
#define VARN_TESTS_SUPPORT_STREAMS_HPP

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <varn/FileSection.hpp>

namespace Varn {

// The buffering of a stream, as for std::setvbuf().
struct Buffering {
  int mode;
  std::size_t size;
};

// A stream that records each write as it arrives, and can be told to fail one.
class RecordingStream {
 public:
  // The write number `failing`, counted from 1, fails; 0 for none.
  explicit RecordingStream(std::size_t failing = 0, Buffering buffering = {_IONBF, 0})
      : failing_(failing), buffer_(buffering.size) {
    cookie_io_functions_t functions{};
    functions.write = &RecordingStream::write;
    stream_ = ::fopencookie(this, "w", functions);
    static_cast<void>(std::setvbuf(stream_, buffer_.data(), buffering.mode, buffering.size));
  }
  RecordingStream(const RecordingStream&) = delete;
  RecordingStream& operator=(const RecordingStream&) = delete;
  ~RecordingStream() { static_cast<void>(std::fclose(stream_)); }

  FILE* get() const { return stream_; }
  const std::vector<std::string>& writes() const { return writes_; }

 private:
  static ssize_t write(void* cookie, const char* text, std::size_t size) {
    auto& self = *static_cast<RecordingStream*>(cookie);
    if (++self.calls_ == self.failing_) return 0;
    self.writes_.emplace_back(text, size);
    return static_cast<ssize_t>(size);
  }

  FILE* stream_ = nullptr;
  std::size_t failing_;
  std::vector<char> buffer_;
  std::size_t calls_ = 0;
  std::vector<std::string> writes_;
};

// Each write of a stream that `write(FILE*)` writes to, and whose write number `failing` fails.
template <typename Write>
std::vector<std::string> writesTo(Buffering buffering, Write write, std::size_t failing = 0) {
  const RecordingStream stream(failing, buffering);
  write(stream.get());
  static_cast<void>(std::fflush(stream.get()));
  return stream.writes();
}

// Each write of `section` to an unbuffered stream.
inline std::vector<std::string> writesOf(const FileSection& section) {
  return writesTo({_IONBF, 0}, [&section](FILE* stream) { section.writeToFile(stream); });
}

// The bytes that `write(FILE*)` writes to a buffered stream.
template <typename Write>
std::string bytesOf(Write write) {
  struct Memory {
    char* text = nullptr;
    std::size_t size = 0;
    ~Memory() { std::free(text); }
  } memory;
  {
    const std::unique_ptr<FILE, decltype(&std::fclose)> stream(
        ::open_memstream(&memory.text, &memory.size), &std::fclose);
    write(stream.get());
  }
  return {memory.text, memory.size};
}

}  // namespace Varn

#endif
