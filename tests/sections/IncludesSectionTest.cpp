#include <memory>
#include <random>
#include <set>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <varn/IncludesSection.hpp>
#include <varn/StringFileSectionFragment.hpp>

#include "support/Streams.hpp"

namespace Varn {
namespace {

using namespace std::string_literals;
using Names = std::vector<std::string>;

TEST(IncludesSection, ComposesItsFourPartsInOneWrite) {
  IncludesSection section;
  EXPECT_EQ("", section.getContent());
  section.setRequiredIncludes({"<stddef.h>", "", "model_types.h"});
  EXPECT_TRUE(section.isEmpty());
  EXPECT_EQ("\n#include <stddef.h>\n\n#include \"model_types.h\"\n", section.getContent());
  section.addInclude("math.h", true);
  section.addInclude("util.h", false);
  section.addInclude("math.h", false);
  for (const char* name : {"<string.h>", "support.h", "util.h", "", "support.h"}) {
    section.addUtilityInclude(name);
  }
  const std::string expected =
      "\n#include <stddef.h>\n\n#include \"model_types.h\"\n\n#include <string.h>\n"
      "#include <math.h>\n#include \"util.h\"\n\n#include \"support.h\"\n";
  EXPECT_EQ(expected, section.getContent());
  EXPECT_EQ(Names{expected}, writesOf(section));

  const std::unique_ptr<FileSection> clone(section.clone());
  section.clearContent();
  section.addInclude("util.h", false);
  EXPECT_EQ(
      "\n#include <stddef.h>\n\n#include \"model_types.h\"\n\n#include <string.h>\n"
      "\n#include \"support.h\"\n\n#include \"util.h\"\n",
      section.getContent())
      << "the names and lists stay";
  EXPECT_EQ(expected, clone->getContent());
}

TEST(IncludesSection, ListsTakeEachNameOnceUnlessSetAsAWhole) {
  IncludesSection section;
  section.setRequiredIncludes({"a.h", "a.h"});
  section.addRequiredInclude("a.h");
  EXPECT_EQ("\n#include \"a.h\"\n\n#include \"a.h\"\n", section.getContent());
  section.setRequiredIncludes(section.getRequiredIncludes());
  EXPECT_EQ((Names{"a.h", "a.h"}), section.getRequiredIncludes());
  section.setRequiredIncludes({});
  section.addRequiredInclude("a.h");
  EXPECT_EQ(Names{"a.h"}, section.getRequiredIncludes());
}

std::string lineOf(const std::string& entry) {
  const std::string quote = entry.front() == '<' ? "" : "\"";
  return "\n#include " + quote + entry + quote + "\n";
}

// The composed text, each line of a list searched for in the added text.
std::string compose(const Names& required, const Names& utility, const std::string& added) {
  std::string text;
  const auto append = [&](const std::string& entry) {
    if (added.find(lineOf(entry)) == std::string::npos) text += lineOf(entry);
  };
  for (const std::string& entry : required) {
    if (!entry.empty()) append(entry);
  }
  for (const std::string& entry : utility) {
    if (!entry.empty() && entry.front() == '<') append(entry);
  }
  text += added;
  for (const std::string& entry : utility) {
    if (!entry.empty() && entry.front() != '<') append(entry);
  }
  return text;
}

class RandomNames {
 public:
  explicit RandomNames(unsigned int seed) : random_(seed) {}

  std::size_t below(std::size_t end) { return random_() % end; }
  std::string name() {
    static const Names pieces = {
        "a", "b.h", "<", ">", "\"", "\n", " ", "<a>", "\n#include \"a\"\n", "\n#include aa\"\n"};
    std::string text;
    for (std::size_t i = below(4); i > 0; --i) text += pieces[below(pieces.size())];
    return below(12) == 0 ? text + "\0x"s : text;
  }
  Names names() {
    Names list(below(6));
    for (std::string& entry : list) entry = name();
    return list;
  }

 private:
  std::mt19937 random_;
};

TEST(IncludesSection, LeavesOutTheLinesThatASearchWouldFind) {
  for (unsigned int seed = 1; seed <= 2000; ++seed) {
    RandomNames random(seed);
    IncludesSection section;
    std::string added;
    std::set<std::string> addedNames;
    for (const std::string& name : random.names()) {
      if (random.below(3) == 0) {
        const std::string raw = random.below(2) == 0 || name.empty() ? name : lineOf(name);
        section.addFragment(boost::make_shared<StringFileSectionFragment>(raw));
        added += raw;
      } else {
        const bool isSystem = random.below(2) == 0;
        section.addInclude(name, isSystem);
        if (!addedNames.insert(name).second) continue;
        const std::string quoted = isSystem ? '<' + name + '>' : '"' + name + '"';
        const std::string line = "#include " + quoted + '\n';
        added.append(line, 0, line.find('\0'));
      }
    }
    const Names required = random.names();
    const Names utility = random.names();
    section.setRequiredIncludes(required);
    section.setUtilityIncludes(utility);
    ASSERT_EQ(compose(required, utility, added), section.getContent())
        << "seed " << seed << ", required " << testing::PrintToString(required) << ", utility "
        << testing::PrintToString(utility) << ", added " << testing::PrintToString(added);
  }
}

}  // namespace
}  // namespace Varn
