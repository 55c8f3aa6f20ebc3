#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <orbel/Value.hpp>

#include "sample/Sample.hpp"

namespace {

using orbel::CellArray;
using orbel::CharacterArray;
using orbel::Value;

TEST(Value, KnowsItsClassAndSize) {
  sample::Item item;
  const orbel::Handle handle = *item.toHostValue().get<orbel::Handle>();
  const struct {
    Value value;
    const char* className;
    std::size_t size;
  } rows[] = {
      {Value(), "missing", 0},
      {Value(false), "logical", 1},
      {Value(std::uint32_t{7}), "uint32", 1},
      {Value(1.5), "double", 1},
      {Value(CharacterArray("abc")), "char", 3},
      {Value(CellArray(std::vector<std::string>{"a", "b"})), "cell", 2},
      {Value(orbel::StringArray({"a"})), "string", 1},
      {Value(handle), "Sample.Item", 1},
      {Value(orbel::ObjectArray("Sample.Box", {handle, handle})), "Sample.Box", 2},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.value.className(), row.className);
    EXPECT_EQ(row.value.size(), row.size) << row.className;
    EXPECT_EQ(row.value, Value(row.value)) << row.className;
    EXPECT_NE(row.value, Value(CharacterArray("other"))) << row.className;
  }
}

TEST(Value, CharacterArraysReadBackInEitherWidth) {
  const CharacterArray narrow("\xC3\xA9\xFF");
  const CharacterArray wide(u"\u00E9\xDCFF");
  EXPECT_EQ(narrow.toText16(), wide.toText16());
  EXPECT_EQ(narrow.toText(), wide.toText());
  EXPECT_EQ(narrow, wide);
}

TEST(Value, NoObjectAndNoObjectsAreDifferentArrays) {
  EXPECT_EQ(orbel::ObjectArray::none("A.B").rows(), 0U);
  EXPECT_EQ(orbel::ObjectArray("A.B", {}).rows(), 1U);
}

}  // namespace
