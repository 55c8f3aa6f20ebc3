#include <stdexcept>

#include <gtest/gtest.h>

#include <varn/VarnGenericFile.hpp>
#include <varn/VarnModuleFile.hpp>
#include <varn/getSysName.hpp>

namespace Varn {
namespace {

using namespace std::string_literals;
using Names = std::vector<std::string>;

TEST(VarnFile, FormsOfTheName) {
  const struct {
    std::string name, baseName, withoutExtension;
    std::u16string wide;
  } forms[] = {
      {"out/model.c", "model", "out/model", u"out/model.c"},
      {"archive.tar.gz", "archive.tar", "archive.tar", u"archive.tar.gz"},
      {"lib.x/model", "model", "lib", u"lib.x/model"},
      {"model", "model", "model", u"model"},
      {"", "", "", u""},
      {"a/.hidden", "", "a/", u"a/.hidden"},
      {"a/..", "..", "a/.", u"a/.."},
      {"out/", ".", "out/", u"out/"},
      {"\xC3\xA9\xFF.h", "\xC3\xA9\xFF", "\xC3\xA9\xFF", u"\u00E9\xDCFF.h"},
      {"d\0e/a.c"s, "a", "d\0e/a"s, u"d\0e/a.c"s},
  };
  for (const auto& form : forms) {
    const VarnGenericFile file(form.name);
    EXPECT_EQ((Names{form.name, form.baseName, form.withoutExtension}),
              (Names{file.getNameAscii(), file.getBaseName(), file.getNameWithoutExtension()}));
    EXPECT_EQ(form.wide, file.getName()) << form.name;
  }
  EXPECT_EQ("a", VarnModuleFile("a\0b.c"s).getNameAscii());
}

TEST(VarnFile, NeedsABuilderThatMakesAContent) {
  EXPECT_THROW(VarnFile("a.c", nullptr), std::invalid_argument);
  EXPECT_THROW(VarnFile("a.c", std::make_unique<VarnFileContentBuilder>()), std::invalid_argument);
}

TEST(VarnFile, IsEmptyUntilItIsMarkedOrHoldsAFragment) {
  VarnGenericFile file("a.c");
  std::string answers;
  const auto ask = [&] { answers += file.isEmpty() ? "empty " : "full "; };
  ask();
  file.setIsNotEmpty();
  ask();
  file.clearContents();
  ask();
  file.getEnumsSection().addContent("");
  ask();
  file.clearContents();
  ask();
  EXPECT_EQ("empty full empty full empty ", answers);
}

TEST(getSysName, SplitsRootAndRest) {
  const struct {
    const char* path;
    Names parts;
  } cases[] = {
      {"<Root>/Sub", {"Root", "Sub"}},
      {"<>/Sub", {"", "Sub"}},
      {"Root/Sub", {"", ""}},
      {"a>b/c", {"", "c"}},
      {"<a/b", {"", ""}},
      {"<Root>", {"Root", ""}},
      {"x/<a>/ b/c", {"a", "<a>/ b/c"}},
      {"><a>/b", {"", "b"}},
      {"", {"", ""}},
  };
  for (const auto& [path, parts] : cases) EXPECT_EQ(parts, getSysName(path)) << path;
}

}  // namespace
}  // namespace Varn
