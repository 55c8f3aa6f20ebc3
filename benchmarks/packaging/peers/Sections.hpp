#ifndef VARN_BENCHMARKS_PACKAGING_PEERS_SECTIONS_HPP
#define VARN_BENCHMARKS_PACKAGING_PEERS_SECTIONS_HPP

#include <cstdio>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include <absl/strings/cord.h>
#include <google/protobuf/io/printer.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

namespace bench {

// Other containers for the text of a section. Each appends pieces, returns the whole text and
// writes it to a stream.

class StringSection {
 public:
  void append(std::string_view text) { text_ += text; }
  void write(FILE* stream) {
    static_cast<void>(std::fwrite(text_.data(), text_.size(), 1, stream));
  }

 protected:
  std::string text_;
};

// The same, but the whole text is copied to a reused buffer at each call.
class CopiedStringSection : public StringSection {
 public:
  const std::string& text() {
    copy_ = text_;
    return copy_;
  }

 private:
  std::string copy_;
};

class OstringstreamSection {
 public:
  void append(std::string_view text) { text_ << text; }
  std::string text() const { return text_.str(); }
  void write(FILE* stream) {
    const std::string text = text_.str();
    static_cast<void>(std::fwrite(text.data(), text.size(), 1, stream));
  }

 private:
  std::ostringstream text_;
};

class CordSection {
 public:
  void append(std::string_view text) { text_.Append(absl::string_view(text.data(), text.size())); }
  std::string text() const { return std::string(text_); }
  void write(FILE* stream) {
    for (const absl::string_view chunk : text_.Chunks()) {
      static_cast<void>(std::fwrite(chunk.data(), chunk.size(), 1, stream));
    }
  }

 private:
  absl::Cord text_;
};

// protobuf's printer on a string. The text is complete when the printer is destroyed.
class PrinterSection {
 public:
  // `text` ends with a NUL.
  void append(std::string_view text) { printer_->Print(text.data()); }
  void write(FILE* stream) { finishAndWrite(stream); }

 protected:
  void appendRaw(std::string_view text) {
    printer_->WriteRaw(text.data(), static_cast<int>(text.size()));
  }

 private:
  void finishAndWrite(FILE* stream) {
    printer_.reset();
    static_cast<void>(std::fwrite(text_.data(), text_.size(), 1, stream));
  }

  std::string text_;
  google::protobuf::io::StringOutputStream out_{&text_};
  std::optional<google::protobuf::io::Printer> printer_{std::in_place, &out_, '$'};
};

// The same with the printer's raw writes.
class RawPrinterSection : public PrinterSection {
 public:
  void append(std::string_view text) { appendRaw(text); }
};

}  // namespace bench

#endif
