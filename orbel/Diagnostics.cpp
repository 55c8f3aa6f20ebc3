#include "orbel/Diagnostics.hpp"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include <orbel/MessageCatalogue.hpp>

#include "orbel/VisibleText.hpp"

namespace orbel {
namespace {

std::string fullId(const MessageRecord& record) {
  return record.component() + ":" + record.identifier();
}

std::string withLinePrefix(const std::string& text, const std::string& prefix) {
  std::string result = prefix;
  for (const char character : text) {
    result += character;
    if (character == '\n') result += prefix;
  }
  return result;
}

HostText toHostText(const std::string& text) {
  HostText result(static_cast<char*>(std::malloc(text.size() + 1)));
  if (!result) throw std::bad_alloc();
  std::memcpy(result.get(), text.c_str(), text.size() + 1);
  return result;
}

}  // namespace

MessageArgument::MessageArgument(const MessageArgument& source) : MessageArgument(0.0) {
  *this = source;
}

MessageRecord::MessageRecord(std::string component, std::string identifier,
                             std::vector<MessageArgument> arguments)
    : arguments_(std::move(arguments)),
      component_(std::move(component)),
      identifier_(std::move(identifier)) {}

struct HostException::Content {
  MessageRecord record;
  std::string what;
  // Where the message starts in it.
  std::size_t message;
};

HostException::HostException(MessageRecord record, const std::string& text) {
  std::string what = fullId(record) + ": ";
  const std::size_t message = what.size();
  what += text;
  content_ = std::make_shared<const Content>(Content{std::move(record), std::move(what), message});
}

HostException::~HostException() = default;

const std::string& HostException::component() const { return content_->record.component(); }

const std::string& HostException::identifier() const { return content_->record.identifier(); }

const std::vector<MessageArgument>& HostException::arguments() const {
  return content_->record.arguments();
}

const char* HostException::message() const noexcept {
  return content_->what.c_str() + content_->message;
}

const char* HostException::what() const noexcept { return content_->what.c_str(); }

class Diagnostic {
 public:
  Diagnostic(const MessageRecord& record, const std::string& context)
      : record_(record), context_(context.empty() ? context : visibleText(context) + ": ") {}

  const MessageRecord& record() const { return record_; }
  std::string inContext(const std::string& words) const { return context_ + words; }

 private:
  MessageRecord record_;
  std::string context_;
};

void DiagnosticDeleter::operator()(Diagnostic* diagnostic) const noexcept { delete diagnostic; }

void releaseMemory(void* memory) noexcept { std::free(memory); }

DiagnosticPtr createDiagnostic(const MessageRecord& record, const std::string& context) {
  return DiagnosticPtr(new Diagnostic(record, context));
}

void throwDiagnostic(DiagnosticPtr diagnostic, const char* text) {
  const MessageRecord& record = diagnostic->record();
  throw HostException(record, diagnostic->inContext(text ? text : formatMessage(record)));
}

HostText renderDiagnostic(const Diagnostic& diagnostic, bool withId,
                          const std::string& linePrefix) {
  const MessageRecord& record = diagnostic.record();
  const std::string words = diagnostic.inContext(formatMessage(record));
  return toHostText(withLinePrefix(withId ? fullId(record) + ": " + words : words, linePrefix));
}

void discardDiagnostic(DiagnosticPtr diagnostic) noexcept { diagnostic.reset(); }

}  // namespace orbel
