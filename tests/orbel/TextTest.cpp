#include <string>

#include <gtest/gtest.h>

#include <orbel/Text.hpp>
#include <orbel/Value.hpp>

namespace {

using namespace std::string_literals;

TEST(Text, ConvertsBetweenWidths) {
  const struct {
    std::string narrow;
    std::u16string wide;
  } rows[] = {
      {"", u""},
      {"model.c", u"model.c"},
      {"a\0b"s, u"a\0b"s},
      {"\xC3\xA9\xE2\x82\xAC", u"\u00E9\u20AC"},
      {"\xF0\x9F\x98\x80", u"\U0001F600"},
      {"\xFFz", u"\xDCFFz"},
      {"\xC3", u"\xDCC3"},  // cut short
      {"\xE2\x82"
       "A",
       u"\xDCE2\xDC82"
       u"A"},                                             // cut short by another character
      {"\xC0\x80", u"\xDCC0\xDC80"},                      // overlong
      {"\xED\xB2\x80", u"\xDCED\xDCB2\xDC80"},            // a surrogate's own sequence
      {"\xF4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"},  // beyond the last code point
  };
  for (const auto& row : rows) {
    EXPECT_EQ(orbel::toUtf16(row.narrow), row.wide) << row.narrow;
    EXPECT_EQ(orbel::toUtf8(row.wide), row.narrow) << row.narrow;
  }
}

TEST(Text, EveryPairOfBytesSurvivesTheRoundTrip) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const std::string text{'\xE1', static_cast<char>(first), static_cast<char>(second), '\x80'};
      ASSERT_EQ(orbel::toUtf8(orbel::toUtf16(text)), text) << first << ' ' << second;
    }
  }
}

TEST(Text, WritesForeignLoneSurrogatesAsTheirOwnSequence) {
  EXPECT_EQ(orbel::toUtf8(u"\xD800x"), "\xED\xA0\x80x");
  EXPECT_EQ(orbel::toUtf8(u"\xDC7F"), "\xED\xB1\xBF");
  EXPECT_EQ(orbel::toUtf8(u"\xDD00"), "\xED\xB4\x80");
}

TEST(Text, CharacterArraysReadBackInEitherWidth) {
  const orbel::CharacterArray narrow("\xC3\xA9\xFF");
  const orbel::CharacterArray wide(u"\u00E9\xDCFF");
  EXPECT_EQ(narrow.toText16(), wide.toText16());
  EXPECT_EQ(narrow.toText(), wide.toText());
  EXPECT_EQ(narrow, wide);
  EXPECT_FALSE(narrow == orbel::CharacterArray("a")) << "other text of the same width";
}

}  // namespace
