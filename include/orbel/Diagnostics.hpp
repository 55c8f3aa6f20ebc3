#ifndef ORBEL_DIAGNOSTICS_HPP
#define ORBEL_DIAGNOSTICS_HPP

#include <exception>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <orbel/Export.hpp>

namespace orbel {

// One value that a message mentions: a text or a number.
//
// Copied by a constructor of its own: where the copy of a text finds no memory, the one of
// std::variant destroys a text that was never made (libstdc++ 12).
class ORBEL_EXPORT MessageArgument : public std::variant<std::string, double> {
 public:
  using variant::variant;
  MessageArgument(const MessageArgument& source);
  MessageArgument(MessageArgument&&) noexcept = default;
  MessageArgument& operator=(const MessageArgument&) = default;
  MessageArgument& operator=(MessageArgument&&) noexcept = default;
  ~MessageArgument() = default;
};

// A message without its text: the component that reports, the identifier of the message within that
// component, and its arguments in the order that the text expects.
// Reporters derive one record type per identifier, so that the arguments are checked by the
// compiler.
class ORBEL_EXPORT MessageRecord {
 public:
  MessageRecord(std::string component, std::string identifier,
                std::vector<MessageArgument> arguments);

  const std::vector<MessageArgument>& arguments() const { return arguments_; }
  const std::string& component() const { return component_; }
  const std::string& identifier() const { return identifier_; }

 private:
  std::vector<MessageArgument> arguments_;
  std::string component_;
  std::string identifier_;
};

// A diagnostic as it unwinds to the script or the engine that made the failing call.
class ORBEL_EXPORT HostException : public std::exception {
 public:
  HostException(MessageRecord record, const std::string& text);
  HostException(const HostException&) noexcept = default;
  HostException& operator=(const HostException&) noexcept = default;
  ~HostException() override;

  const std::string& component() const;
  const std::string& identifier() const;
  const std::vector<MessageArgument>& arguments() const;

  // The catalogue's words with the arguments filled in.
  const char* message() const noexcept;
  // The full message ID ("component:identifier"), ": ", and message().
  const char* what() const noexcept override;

 private:
  struct Content;
  std::shared_ptr<const Content> content_;
};

// An error object that was created but neither thrown nor discarded yet.
class Diagnostic;

struct ORBEL_EXPORT DiagnosticDeleter {
  void operator()(Diagnostic* diagnostic) const noexcept;
};
using DiagnosticPtr = std::unique_ptr<Diagnostic, DiagnosticDeleter>;

// Frees memory that the host allocated. Null is allowed.
ORBEL_EXPORT void releaseMemory(void* memory) noexcept;

struct MemoryRelease {
  void operator()(void* memory) const noexcept { releaseMemory(memory); }
};
// A NUL-terminated text in host memory.
using HostText = std::unique_ptr<char, MemoryRelease>;

// A diagnostic for `record`; `context`, unless empty, is put in front of the message's words with
// ": " between them.
ORBEL_EXPORT DiagnosticPtr createDiagnostic(const MessageRecord& record,
                                            const std::string& context);

// Throws `diagnostic` as HostException; `text`, unless null, replaces the catalogue's words.
[[noreturn]] ORBEL_EXPORT void throwDiagnostic(DiagnosticPtr diagnostic, const char* text);

// The message as text, `linePrefix` in front of every line. With `withId` the full message ID
// precedes the words. A NUL byte inside an argument is shown as the two characters "\0".
ORBEL_EXPORT HostText renderDiagnostic(const Diagnostic& diagnostic, bool withId,
                                       const std::string& linePrefix);

// Releases a diagnostic that was not thrown.
ORBEL_EXPORT void discardDiagnostic(DiagnosticPtr diagnostic) noexcept;

}  // namespace orbel

#endif
