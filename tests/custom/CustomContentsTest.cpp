#include <memory>

#include <gtest/gtest.h>

#include <varn/CustomContents.hpp>

#include "orbel/RaisedText.hpp"
#include "support/Streams.hpp"

namespace Varn {
namespace {

using namespace std::string_literals;

// The fragments that `contents` has yet to append for `builtin`, one write each.
std::vector<std::string> appended(CustomContents& contents, VarnFileSectionKind builtin) {
  FileSection section;
  contents.appendMissingTokens(section, builtin);
  return writesOf(section);
}
using Texts = std::vector<std::string>;

TEST(CustomContents, AppendsUnplacedSectionsInOrder) {
  CustomContents contents("a.c");
  const char* const names[] = {"Z", "Used", "A", "Retrieved", "A_InUse"};
  contents.setCustomTokenInUse("Used");
  for (const char* name : names) contents.addCustomSection(name, TYPEDEFS_SECTION);
  contents.addCustomSection("Z", TYPEDEFS_SECTION);
  contents.setCustomTokenInUse("Z_InUse");
  contents.addCustomSection("Doc", DOCUMENTATION_SECTION);
  for (const char* name : names) {
    contents.addContentToSection(name, name + "1 \0x"s);
    contents.addContentToSection(name, "2 ");
  }
  contents.addContentToSection("Doc", "3");
  EXPECT_EQ("Retrieved1 2 ", contents.getCustomSectionContent("Retrieved", "R"));
  EXPECT_EQ("", contents.getCustomSectionContent("Unknown", "R"));
  EXPECT_EQ((Texts{"Z1 2 ", "A1 2 ", "A_InUse1 2 "}), appended(contents, TYPEDEFS_SECTION));
  contents.addContentToSection("A", "late");
  EXPECT_EQ(Texts{}, appended(contents, TYPEDEFS_SECTION)) << "each is placed once";
  EXPECT_EQ(Texts{}, appended(contents, DOCUMENTATION_SECTION));
  EXPECT_EQ("3", contents.getCustomSectionContent("Doc", "R"));
  EXPECT_EQ("Used1 2 ", contents.getCustomSectionContent("Used", "R"));
}

TEST(CustomContents, AnEmptyTextIsAppendedAsAFragment) {
  CustomContents contents("a.c");
  contents.addCustomSection("A", BANNER_SECTION);
  FileSection section;
  contents.appendMissingTokens(section, BANNER_SECTION);
  EXPECT_FALSE(section.isEmpty());
}

TEST(CustomContents, RaisesAndChangesNothing) {
  CustomContents contents("a.c");
  contents.addCustomSection("A", TYPEDEFS_SECTION);
  contents.addContentToSection("A", "text");
  EXPECT_EQ(raisedText([&] { contents.addCustomSection("A", DEFINITIONS_SECTION); }),
            "Pyx:codeGen:CustomContentPreviousAssociation: The custom section \"A\" cannot be "
            "attached to the built-in section \"Definitions\": it is already attached to "
            "\"Typedefs\". The section of forward declarations shows as \"\".");
  EXPECT_EQ(raisedText([&] { contents.addContentToSection("N", "x"); }),
            "Pyx:codeGen:CustomContentSectionDoesNotExist: The file \"a.c\" has no custom section "
            "\"N\". Declare the section before adding content to it.");
  EXPECT_FALSE(contents.isCustomSection("N"));
  EXPECT_EQ(Texts{}, appended(contents, DEFINITIONS_SECTION));
  const std::string& text = contents.getCustomSectionContent("A", "R");
  EXPECT_EQ(raisedText([&] { contents.getCustomSectionContent("A", "S"); }),
            "Pyx:codeGen:CustomContentSectionAlreadyRetrieved: The content of the custom section "
            "\"A\" cannot be given to \"S\": the content of \"A\" was retrieved before, and it can "
            "be placed only once.");
  EXPECT_EQ("text", text);
}

TEST(CustomContents, CopiesShareTheSectionsButNotTheTables) {
  CustomContents source("a.c");
  source.addCustomSection("A", BANNER_SECTION);
  CustomContents assigned("b.c");
  assigned.addCustomSection("Dropped", BANNER_SECTION);
  assigned = source;
  assigned = *&assigned;
  CustomContents copy(source);
  copy.addCustomSection("B", BANNER_SECTION);
  copy.setCustomTokenInUse("A");
  source.addContentToSection("A", "shared");
  copy.addContentToSection("B", "own");
  EXPECT_EQ(Texts{"own"}, appended(copy, BANNER_SECTION));
  EXPECT_EQ(Texts{"shared"}, appended(assigned, BANNER_SECTION));
  EXPECT_EQ(Texts{}, appended(source, BANNER_SECTION)) << "it was placed through another";
  EXPECT_FALSE(source.isCustomSection("B") || assigned.isCustomSection("Dropped"));
  EXPECT_NE(raisedText([&] { assigned.addContentToSection("N", ""); }).find("file \"a.c\""),
            std::string::npos);
}

TEST(CustomSection, AClonesStateIsItsOwn) {
  CustomSection section("A_InUse", DOCUMENTATION_SECTION);
  section.addContent("text");
  section.setIsRetrieved();
  const std::unique_ptr<CustomSection> clone(dynamic_cast<CustomSection*>(section.clone()));
  clone->addContent(" more");
  EXPECT_EQ("text|text more", section.getContent() + '|' + clone->getContent());
  EXPECT_TRUE(clone->isRetrieved() && !clone->isRequired());
}

}  // namespace
}  // namespace Varn
