#ifndef ORV_BYTES_HPP
#define ORV_BYTES_HPP

#include <cstddef>
#include <string_view>

#include <pybind11/pybind11.h>

namespace orv {

// The bytes of any contiguous buffer, borrowed while this object lives.
class Bytes {
 public:
  explicit Bytes(const pybind11::object& object) {
    if (PyObject_GetBuffer(object.ptr(), &buffer_, PyBUF_SIMPLE) != 0) {
      throw pybind11::error_already_set();
    }
  }
  Bytes(const Bytes&) = delete;
  Bytes& operator=(const Bytes&) = delete;
  ~Bytes() { PyBuffer_Release(&buffer_); }

  std::string_view view() const {
    return {static_cast<const char*>(buffer_.buf), static_cast<std::size_t>(buffer_.len)};
  }

 private:
  Py_buffer buffer_{};
};

}  // namespace orv

#endif
