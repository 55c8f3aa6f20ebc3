#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>
#include <varn/StringFileSectionFragment.hpp>
#include <varn/VarnFileContent.hpp>
#include <varn/VarnFileContentCreator.hpp>
#include <varn/VarnModuleFileContentBuilder.hpp>
#include <varn/VarnSDataTypesFileContentBuilder.hpp>
#include <varn/VarnSGenericFileContentBuilder.hpp>

#include "support/Streams.hpp"

namespace Varn {
namespace {

using ContentPtr = std::unique_ptr<VarnFileContent>;

ContentPtr contentOf(VarnFileContentBuilder&& builder) {
  return ContentPtr(VarnFileContentCreator::createFileContent(builder));
}

// The names of the sections, special classes marked; kinds outside the enumeration too.
std::string sectionsOf(const VarnFileContent& content) {
  std::string text;
  for (int value = -1; value <= 23; ++value) {
    const auto kind = static_cast<VarnFileSectionKind>(value);
    if (!content.hasSection(kind)) continue;
    const FileSection& section = content.getSection(kind);
    text += getOrvSectionNameFromEnum(kind);
    if (dynamic_cast<const IncludesSection*>(&section) != nullptr) text += "(i)";
    if (dynamic_cast<const FunctionsSection*>(&section) != nullptr) text += "(f)";
    text += ' ';
  }
  return text;
}

TEST(VarnFileContent, EachFileClassHasItsSections) {
  EXPECT_EQ(
      "Banner Includes(i) ModelTypesIncludes ModelTypesDefines Defines ModelTypesTypedefs "
      "IntrinsicTypes PrimitiveTypedefs UserTop Typedefs  Enums Definitions ExternData ExternFcns "
      "FcnPrototypes Declarations Functions(f) CompilerErrors CompilerWarnings Documentation "
      "UserBottom ",
      sectionsOf(*contentOf(VarnSGenericFileContentBuilder())));
  EXPECT_EQ(
      "Includes(i) Defines Typedefs  ExternData ExternFcns FcnPrototypes Declarations "
      "Functions(f) Documentation ",
      sectionsOf(*contentOf(VarnModuleFileContentBuilder())));
  EXPECT_EQ("Includes(i) Defines Typedefs ",
            sectionsOf(*contentOf(VarnSDataTypesFileContentBuilder())));
}

TEST(VarnFileContent, HostNamesSelectTheirKindOthersTheBanner) {
  EXPECT_EQ(FORWARD_DECLS_SECTION, getSectionKindFromName("FORWARD_DECLS_SECTION"));
  EXPECT_EQ(BANNER_SECTION, getSectionKindFromName("typedefs_section"));
  EXPECT_EQ("", getOrvSectionNameFromEnum(static_cast<VarnFileSectionKind>(22)));
  EXPECT_EQ("", getOrvSectionNameFromEnum(static_cast<VarnFileSectionKind>(-1)));
}

TEST(VarnFileContent, AnAbsentSectionDiscardsWhatItIsGiven) {
  const ContentPtr content = contentOf(VarnModuleFileContentBuilder());
  FileSection& section = content->getSection(BANNER_SECTION);
  const auto fragment = boost::make_shared<StringFileSectionFragment>("x");
  section.addContent("x");
  section.addContent_cstr("x");
  section.addFragment(fragment);
  const std::unique_ptr<FileSection> clone(section.clone());
  clone->addContent("x");
  EXPECT_EQ(1, fragment.use_count());
  for (FileSection* empty : {&section, clone.get()}) {
    EXPECT_TRUE(empty->isEmpty());
    EXPECT_EQ("", empty->getContent());
    EXPECT_EQ("", bytesOf([empty](FILE* stream) { empty->writeToFile(stream); }));
  }
  EXPECT_TRUE(content->isEmpty());
}

TEST(VarnFileContent, CopiesCloneAndClearingKeepsLists) {
  const ContentPtr content = contentOf(VarnSGenericFileContentBuilder());
  const VarnFileContent untouched(*content);
  EXPECT_EQ(&std::as_const(*content).getSection(INCLUDES_SECTION),
            &content->getSection(INCLUDES_SECTION));
  dynamic_cast<IncludesSection&>(content->getSection(INCLUDES_SECTION)).addRequiredInclude("r.h");
  EXPECT_TRUE(content->isEmpty()) << "names in lists are no fragments";
  dynamic_cast<FunctionsSection&>(content->getSection(FUNCTIONS_SECTION)).addFunction("f", "{}");
  EXPECT_FALSE(content->isEmpty());
  const VarnFileContent copy(*content);
  content->clearContents();
  EXPECT_TRUE(content->isEmpty());
  EXPECT_EQ("\n#include \"r.h\"\n", content->getSection(INCLUDES_SECTION).getContent());
  EXPECT_EQ(sectionsOf(*content), sectionsOf(copy));
  EXPECT_EQ(sectionsOf(*content), sectionsOf(untouched));
  EXPECT_TRUE(untouched.isEmpty());
  EXPECT_EQ("\n#include \"r.h\"\n{}", copy.getSection(INCLUDES_SECTION).getContent() +
                                          copy.getSection(FUNCTIONS_SECTION).getContent());
}

// Records its destruction.
class RecordedSection : public FileSection {
 public:
  RecordedSection(VarnFileSectionKind kind, std::vector<int>& destroyed)
      : kind_(kind), destroyed_(destroyed) {}
  RecordedSection(const RecordedSection&) = delete;
  RecordedSection& operator=(const RecordedSection&) = delete;
  ~RecordedSection() override { destroyed_.push_back(kind_); }

 private:
  VarnFileSectionKind kind_;
  std::vector<int>& destroyed_;
};

// Records the name of each step.
// clang-format off
class StepRecorder : public VarnFileContentBuilder {
 public:
  void buildContent() override { steps += "Content"; }
#define STEP(kind) \
  void build##kind##Section() override { steps += " " #kind; }
  STEP(Banner) STEP(Includes) STEP(ModelTypesIncludes) STEP(ModelTypesDefines) STEP(Defines)
  STEP(ModelTypesTypedefs) STEP(IntrinsicTypes) STEP(PrimitiveTypedefs) STEP(UserTop)
  STEP(Typedefs) STEP(ForwardDeclarations) STEP(Enums) STEP(Definitions) STEP(ExternData)
  STEP(ExternFcns) STEP(FcnPrototypes) STEP(Declarations) STEP(Functions) STEP(CompilerErrors)
  STEP(CompilerWarnings) STEP(Documentation) STEP(UserBottom)
#undef STEP

  std::string steps;
};
// clang-format on

TEST(VarnFileContentCreator, RunsTheStepsInTheOrderOfTheKinds) {
  StepRecorder recorder;
  EXPECT_EQ(nullptr, VarnFileContentCreator::createFileContent(recorder));
  EXPECT_EQ(
      "Content Banner Includes ModelTypesIncludes ModelTypesDefines Defines ModelTypesTypedefs "
      "IntrinsicTypes PrimitiveTypedefs UserTop Typedefs ForwardDeclarations Enums Definitions "
      "ExternData ExternFcns FcnPrototypes Declarations Functions CompilerErrors CompilerWarnings "
      "Documentation UserBottom",
      recorder.steps);
}

// Makes some sections in another order than that of their kinds; the last step may fail.
class RecordingBuilder : public VarnSGenericFileContentBuilder {
 public:
  void buildBannerSection() override { build(USERTOP_SECTION); }
  void buildUserTopSection() override { build(BANNER_SECTION); }
  void buildFunctionsSection() override {
    build(FUNCTIONS_SECTION);
    build(FUNCTIONS_SECTION);
  }
  void buildUserBottomSection() override {
    if (fails) throw std::runtime_error("no bottom");
  }

  bool fails = false;
  std::vector<int> destroyed;

 private:
  void build(VarnFileSectionKind kind) {
    getFileContent()->setSection(kind, std::make_unique<RecordedSection>(kind, destroyed));
  }
};

TEST(VarnFileContentCreator, DeletesSectionsInTheOrderOfKinds) {
  const std::vector<int> order{BANNER_SECTION, USERTOP_SECTION, FUNCTIONS_SECTION,
                               FUNCTIONS_SECTION};
  RecordingBuilder builder;
  ContentPtr content(VarnFileContentCreator::createFileContent(builder));
  EXPECT_TRUE(builder.destroyed.empty());
  content.reset();
  EXPECT_EQ(order, builder.destroyed);
  builder.destroyed.clear();
  builder.fails = true;
  EXPECT_THROW(VarnFileContentCreator::createFileContent(builder), std::runtime_error);
  EXPECT_EQ(order, builder.destroyed) << "of the unfinished content";
  VarnModuleFileContentBuilder unstarted;
  unstarted.buildIncludesSection();
  EXPECT_EQ(nullptr, unstarted.getFileContent());
}

}  // namespace
}  // namespace Varn
