#include <string>

#include <gtest/gtest.h>

#include <orbel/Diagnostics.hpp>
#include <orbel/MessageCatalogue.hpp>

#include "RaisedText.hpp"

namespace {

using namespace std::string_literals;
using orbel::MessageRecord;

TEST(Diagnostics, ContextPrecedesTheWordsAndTextReplacesThem) {
  const MessageRecord record("Test", "None", {});
  EXPECT_EQ(raisedText([&] {
              orbel::throwDiagnostic(orbel::createDiagnostic(record, "reading"), "no luck");
            }),
            "Test:None: reading: no luck");
}

TEST(Diagnostics, RendersThePrefixOnEveryLine) {
  orbel::setMessage("Test", "Lines", "{1} is twice");
  orbel::addMessage("Test", "Lines", "does not replace it");
  const MessageRecord record("Test", "Lines", {"MODEL\n.c\0"s});
  const auto diagnostic = orbel::createDiagnostic(record, "");
  EXPECT_STREQ(orbel::renderDiagnostic(*diagnostic, false, "-->").get(),
               "-->MODEL\n-->.c\\0 is twice");
  EXPECT_STREQ(orbel::renderDiagnostic(*diagnostic, true, "-->").get(),
               "-->Test:Lines: MODEL\n-->.c\\0 is twice");
}

TEST(MessageCatalogue, FillsInWhatTheWordsName) {
  const struct {
    const char* words;
    std::string text;
  } rows[] = {
      {"{2}, {1} and {2}", "12.5, one and 12.5"},
      {"{{1}} {", "{1} {"},
      {"{3} {0} {x} {1", "{3} {0} {x} {1"},
      {"{99999999999999999999}", "{99999999999999999999}"},
  };
  for (const auto& row : rows) {
    orbel::setMessage("Test", "Words", row.words);
    EXPECT_EQ(orbel::formatMessage(MessageRecord("Test", "Words", {"one", 12.5})), row.text);
  }
}

TEST(MessageCatalogue, UnknownMessagesStillSayAllThereIs) {
  EXPECT_EQ(orbel::formatMessage(MessageRecord("Test", "Unknown", {"a{1}", 1e20, 4294967295.0})),
            "Test:Unknown: a{1}, 100000000000000000000, 4294967295");
}

}  // namespace
