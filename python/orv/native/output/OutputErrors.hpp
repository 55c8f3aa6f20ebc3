#ifndef ORV_OUTPUT_OUTPUTERRORS_HPP
#define ORV_OUTPUT_OUTPUTERRORS_HPP

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

namespace orv {

// The system's error for a path.
class SystemError : public std::system_error {
 public:
  SystemError(int reason, const std::string& path)
      : std::system_error(reason, std::generic_category(), path),
        path_(std::make_shared<const std::string>(path)) {}

  const std::string& path() const { return *path_; }

 private:
  std::shared_ptr<const std::string> path_;
};

// A place that nothing is written to, whatever the system would say. The text names it.
class OutputRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace orv

#endif
