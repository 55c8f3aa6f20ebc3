// A class derived from each exported class, overriding each virtual operation with its documented
// signature. The test is that this compiles and links against the exported names alone.

#include <ostream>
#include <type_traits>

#include <gtest/gtest.h>

#include <orbel/Value.hpp>
#include <varn/varn_filepackaging.hpp>

namespace {

using namespace Varn;  // NOLINT(google-build-using-namespace): the classes under test
using std::string;

// The virtual operations of every object that scripts can hold.
template <class Base>
class Exposed : public Base {
 public:
  using Base::Base;
  string getFullyQualifiedKoboTypeName() const override {
    return Base::getFullyQualifiedKoboTypeName();
  }
  orbel::Value toHostValue() override { return Base::toHostValue(); }
  void prePropertySet(const string& property, const orbel::Value& value,
                      std::size_t valueSize) override {
    Base::prePropertySet(property, value, valueSize);
  }
  void postPropertySet(const string& property, const orbel::Value& value,
                       std::size_t valueSize) override {
    Base::postPropertySet(property, value, valueSize);
  }
  bool isSavedWithModel() const override { return Base::isSavedWithModel(); }
  void lock() override { Base::lock(); }
  void unlock() override { Base::unlock(); }
};

// The virtual operations of a section of the class `Base`.
template <class Base>
class Section : public Exposed<Base> {
 public:
  using Exposed<Base>::Exposed;
  Section() = default;
  Section(const Section&) = default;
  Section& operator=(const Section&) = delete;
  ~Section() override = default;

  bool isEmpty() const override { return Base::isEmpty(); }
  void printToStream(std::ostream& os) const override { Base::printToStream(os); }
  const string& getContent() const override { return Base::getContent(); }
  void addContent_cstr(const char* text) override { Base::addContent_cstr(text); }
  void addContent(const string& text) override { Base::addContent(text); }
  void addFragment(boost::shared_ptr<FileSectionFragment> fragment) override {
    Base::addFragment(fragment);
  }
  void writeToFile(FILE* stream) const override { Base::writeToFile(stream); }
  FileSection* clone() const override { return Base::clone(); }
  void clearContent() override { Base::clearContent(); }

 protected:
  unsigned int getNumberOfSectionFragments() const override {
    return Base::getNumberOfSectionFragments();
  }
  const string& getSectionFragment(unsigned int index) const override {
    return Base::getSectionFragment(index);
  }
};

class Custom : public Section<CustomSection> {
 public:
  Custom() : Section("custom", BANNER_SECTION) {}
};

template <class Base>
class Fragment : public Base {
 public:
  using Base::Base;
  const string& getContent() const override { return text_; }
  void writeToFile(FILE* stream) const override { std::fputs(text_.c_str(), stream); }

 private:
  string text_ = "fragment";
};

template <class Base>
class Builder : public Base {
 public:
#define STEP(name) \
  void build##name() override { Base::build##name(); }
  STEP(Content)
  STEP(BannerSection)
  STEP(IncludesSection)
  STEP(ModelTypesIncludesSection)
  STEP(ModelTypesDefinesSection)
  STEP(DefinesSection)
  STEP(ModelTypesTypedefsSection)
  STEP(IntrinsicTypesSection)
  STEP(PrimitiveTypedefsSection)
  STEP(UserTopSection)
  STEP(TypedefsSection)
  STEP(ForwardDeclarationsSection)
  STEP(EnumsSection)
  STEP(DefinitionsSection)
  STEP(ExternDataSection)
  STEP(ExternFcnsSection)
  STEP(FcnPrototypesSection)
  STEP(DeclarationsSection)
  STEP(FunctionsSection)
  STEP(CompilerErrorsSection)
  STEP(CompilerWarningsSection)
  STEP(DocumentationSection)
  STEP(UserBottomSection)
#undef STEP
  VarnFileContent* getFileContent() override { return Base::getFileContent(); }
};

template <class Base>
class Derived : public Base {
 public:
  using Base::Base;
};

// Operations that are not virtual, with their documented signatures.
using Kind = VarnFileSectionKind;
using Packaging = VarnFilePackagingOrvBridge;
static_assert(
    std::is_same_v<decltype(&CustomSection::getBuiltinSection), Kind (CustomSection::*)()>);
static_assert(
    std::is_same_v<decltype(&CustomSection::getSectionToken), string (CustomSection::*)()>);
static_assert(std::is_same_v<decltype(&CustomContents::isCustomSection),
                             bool (CustomContents::*)(const string&)>);
static_assert(std::is_same_v<decltype(&FileRepOrvBridge::getFileFromIndex),
                             VarnFile& (FileRepOrvBridge::*)(int)>);
static_assert(
    std::is_same_v<decltype(&Packaging::setModelHeaderAttributes), void (Packaging::*)(VarnFile*)>);
static_assert(
    std::is_same_v<decltype(&Packaging::setModelSourceAttributes), void (Packaging::*)(VarnFile*)>);

template <class Base>
string classNameOf() {
  return Exposed<Base>("a.c").getFullyQualifiedKoboTypeName();
}

TEST(DerivedClasses, UseTheExportedNamesOnly) {
  const std::unique_ptr<FileSection> clone(Section<FileSection>().clone());
  EXPECT_TRUE(clone->isEmpty());
  Section<IncludesSection> includes;
  includes.addFragment(boost::shared_ptr<FileSectionFragment>(new Fragment<FileSectionFragment>));
  EXPECT_EQ("fragment", Section<IncludesSection>(includes).getContent());
  Section<FunctionsSection> functions;
  functions.addContent("f");
  EXPECT_EQ("f", functions.getFunction(0));
  Section<VarnFileContent::EmptyFileSection> empty;
  empty.addContent("discarded");
  EXPECT_TRUE(empty.isEmpty());
  EXPECT_EQ("custom_InUse", Custom().getSectionToken());
  EXPECT_EQ("fragment", Fragment<StringFileSectionFragment>().getContent());

  VarnFile file("b.c", std::make_unique<Builder<VarnModuleFileContentBuilder>>());
  VarnFile types("b.h", std::make_unique<Builder<VarnSDataTypesFileContentBuilder>>());
  Exposed<VarnFile> generic("c.c", std::make_unique<Builder<VarnSGenericFileContentBuilder>>());
  Builder<VarnFileContentBuilder>().buildBannerSection();
  EXPECT_FALSE(file.hasSection(BANNER_SECTION));
  EXPECT_FALSE(types.hasSection(FUNCTIONS_SECTION));
  EXPECT_TRUE(generic.hasSection(BANNER_SECTION));
  EXPECT_EQ("Varn.VarnGenericFile", classNameOf<VarnGenericFile>());
  EXPECT_EQ("Varn.VarnModuleFile", classNameOf<VarnModuleFile>());
  EXPECT_EQ("Varn.VarnDataTypesFile", classNameOf<VarnDataTypesFile>());

  Exposed<VarnFileRepository> repository;
  repository.createGenericFile("d.c");
  EXPECT_EQ("d.c", Derived<FileRepOrvBridge>(repository).getFileFromIndex(0).getNameAscii());
  Derived<VarnFilePackagingManager> manager(&repository);
  Derived<VarnFilePackagingOrvBridge>(&manager, &repository).setModelHeaderAttributes(&file);
  EXPECT_EQ("model", file.getGroup());
  EXPECT_FALSE(Derived<CustomContents>("d.c").isCustomSection("none"));
  EXPECT_TRUE(Derived<VarnFileContent>().isEmpty());
  EXPECT_EQ("", Derived<VarnFileNameTable>().getFileNameFromTable(ModelHeaderFile));
  EXPECT_FALSE(Derived<FileRepErrorStatus>().hadError());
}

}  // namespace
