#include <memory>

#include <gtest/gtest.h>

#include <varn/FunctionsSection.hpp>

namespace Varn {
namespace {

using namespace std::string_literals;

// Both lists, as scripts count them.
std::string functionsOf(const FunctionsSection& section) {
  std::string text;
  for (unsigned int i = 1; i <= section.getNumberOfFunctionNames(); ++i) {
    text += section.kobo_getFunctionName(i) + ' ';
  }
  for (unsigned int i = 1; i <= section.getNumberOfFunctions(); ++i) {
    text += '|' + section.kobo_getFunction(i);
  }
  return text;
}

TEST(FunctionsSection, CountsBodiesAndNamesApart) {
  FunctionsSection section;
  section.addFunction("f", "1;\0x"s);
  section.addFunction("f", "2;");
  section.addContent("3;");
  EXPECT_EQ("f f |1;|2;|3;", functionsOf(section));
  EXPECT_EQ("2;", section.getFunction(1));
  const std::unique_ptr<FunctionsSection> clone(dynamic_cast<FunctionsSection*>(section.clone()));
  section.clearContent();
  EXPECT_EQ("f f ", functionsOf(section)) << "the names stay";
  clone->addFunction("g", "4;");
  EXPECT_EQ("f f g |1;|2;|3;|4;", functionsOf(*clone));
  // Its own names as arguments, while their list grows.
  for (int i = 0; i < 5; ++i) {
    clone->addFunction(clone->getFunctionName(2), clone->getFunctionName(0));
  }
  EXPECT_EQ("f f g g g g g g |1;|2;|3;|4;|f|f|f|f|f", functionsOf(*clone));
}

}  // namespace
}  // namespace Varn
