#include "orbel/MessageCatalogue.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "orbel/DefaultMessages.hpp"
#include "orbel/VisibleText.hpp"

namespace orbel {
namespace {

class Catalogue {
 public:
  static Catalogue& instance() {
    // Never destroyed: an error may be thrown after every other static object is destroyed.
    static Catalogue& catalogue = *new Catalogue;
    return catalogue;
  }

  void set(const std::string& id, const std::string& words) {
    const std::lock_guard<std::mutex> lock(mutex_);
    words_.insert_or_assign(id, words);
  }

  void add(const std::string& id, const std::string& words) {
    const std::lock_guard<std::mutex> lock(mutex_);
    words_.emplace(id, words);
  }

  std::optional<std::string> find(const std::string& id) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = words_.find(id);
    return found == words_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  Catalogue() {
    for (const DefaultMessage& message : defaultMessages()) {
      words_.emplace(std::string("Orbel:") + message.identifier, message.words);
    }
  }

  mutable std::mutex mutex_;
  std::map<std::string, std::string> words_;
};

std::string numberText(double number) {
  std::array<char, 512> buffer;  // the longest whole number has 309 digits
  char* end = buffer.data() + buffer.size();
  const bool whole = std::trunc(number) == number;
  const auto written = whole && std::isfinite(number)
                           ? std::to_chars(buffer.data(), end, number, std::chars_format::fixed)
                           : std::to_chars(buffer.data(), end, number);
  return std::string(buffer.data(), written.ptr);
}

std::string argumentText(const MessageArgument& argument) {
  const auto* text = std::get_if<std::string>(&argument);
  return text ? visibleText(*text) : numberText(std::get<double>(argument));
}

std::string withoutCatalogue(const std::string& id, const std::vector<MessageArgument>& arguments) {
  std::string result = id;
  const char* separator = ": ";
  for (const MessageArgument& argument : arguments) {
    result += separator + argumentText(argument);
    separator = ", ";
  }
  return result;
}

// The argument that a placeholder at the start of `words` names, if there is one; `length` is set
// to the length of the placeholder.
const MessageArgument* placeholder(std::string_view words,
                                   const std::vector<MessageArgument>& arguments,
                                   std::size_t& length) {
  std::size_t number = 0;
  const char* end = words.data() + words.size();
  const auto parsed = std::from_chars(words.data() + 1, end, number);
  if (parsed.ec != std::errc() || parsed.ptr == end || *parsed.ptr != '}' || number == 0 ||
      number > arguments.size()) {
    return nullptr;
  }
  length = static_cast<std::size_t>(parsed.ptr - words.data()) + 1;
  return &arguments[number - 1];
}

std::string fillIn(std::string_view words, const std::vector<MessageArgument>& arguments) {
  std::string result;
  while (!words.empty()) {
    std::size_t length = 1;
    const char first = words.front();
    const bool doubled = words.size() > 1 && words[1] == first;
    if ((first == '{' || first == '}') && doubled) {
      result += first;
      length = 2;
    } else if (const auto* argument =
                   first == '{' ? placeholder(words, arguments, length) : nullptr) {
      result += argumentText(*argument);
    } else {
      result += first;
    }
    words.remove_prefix(length);
  }
  return result;
}

}  // namespace

void setMessage(const std::string& component, const std::string& identifier,
                const std::string& words) {
  Catalogue::instance().set(component + ":" + identifier, visibleText(words));
}

void addMessage(const std::string& component, const std::string& identifier,
                const std::string& words) {
  Catalogue::instance().add(component + ":" + identifier, visibleText(words));
}

std::string formatMessage(const MessageRecord& record) {
  const std::string id = record.component() + ":" + record.identifier();
  const auto words = Catalogue::instance().find(id);
  return words ? fillIn(*words, record.arguments())
               : withoutCatalogue(visibleText(id), record.arguments());
}

}  // namespace orbel
