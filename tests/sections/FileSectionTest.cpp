#include <algorithm>
#include <iterator>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <varn/FileRepOrvBridge.hpp>
#include <varn/FileSection.hpp>
#include <varn/FunctionsSection.hpp>
#include <varn/IncludesSection.hpp>
#include <varn/StringFileSectionFragment.hpp>
#include <varn/VarnFileRepository.hpp>

#include "support/Streams.hpp"

namespace Varn {
namespace {

using namespace std::string_literals;

// An engine's own fragment; getContent() and writeToFile() give different texts.
class ForeignFragment : public FileSectionFragment {
 public:
  explicit ForeignFragment(std::string text) : text_(std::move(text)) {}
  const std::string& getContent() const override { return text_; }
  void writeToFile(FILE* stream) const override {
    static_cast<void>(std::fputs("written ", stream));
    static_cast<void>(std::fwrite(text_.data(), text_.size(), 1, stream));
  }

 private:
  std::string text_;
};

std::unique_ptr<FunctionsSection> cloneOf(const FunctionsSection& section) {
  return std::unique_ptr<FunctionsSection>(dynamic_cast<FunctionsSection*>(section.clone()));
}

std::string printed(const FileSection& section) {
  std::ostringstream os;
  os.width(500);
  section.printToStream(os);
  return os.str();
}

TEST(FileSection, HandedOutTextStaysUntilAFragmentObjectComes) {
  FileSection section;
  section.addContent("a");
  const std::string& text = section.getContent();
  section.addContent("b");
  section.addContent_cstr("c");
  EXPECT_EQ("a", text);
  section.clearContent();
  EXPECT_EQ("a", text);
  section.addContent(text);
  section.addFragment(boost::make_shared<StringFileSectionFragment>("d"));
  EXPECT_EQ("", text);
  EXPECT_EQ("ad", section.getContent());
}

TEST(FileSection, FragmentTextStaysWhileAnySectionHoldsIt) {
  auto section = std::make_unique<FunctionsSection>();
  section->addContent("first");
  section->addContent("second");
  const std::string& text = section->getFunction(1);
  for (int i = 0; i < 100; ++i) section->addContent("what holds it grows");
  const auto clone = cloneOf(*section);
  for (int i = 0; i < 1000; ++i) section->addContent("more text than one page holds");
  section.reset();
  EXPECT_EQ("second", text);
  EXPECT_EQ(&text, &clone->getFunction(1));
}

TEST(FileSection, UsesAndSharesAForeignFragment) {
  auto fragment = boost::make_shared<ForeignFragment>("f\0g"s);
  auto section = std::make_unique<FileSection>();
  section->addContent("a");
  section->addFragment(fragment);
  section->addContent("b");
  EXPECT_EQ("af\0gb"s, section->getContent());
  EXPECT_EQ("af\0gb"s, printed(*section));
  EXPECT_EQ((std::vector<std::string>{"a", "written ", "f\0g"s, "b"}), writesOf(*section));
  const std::unique_ptr<FileSection> clone(section->clone());
  section->clearContent();
  EXPECT_EQ(2, fragment.use_count());
  EXPECT_EQ("af\0gb"s, clone->getContent());
  clone->clearContent();
  EXPECT_EQ(1, fragment.use_count());
}

TEST(FileSection, WithoutTextDoesNotTouchTheStream) {
  FileSection section;
  section.writeToFile(nullptr);
  section.addContent("");
  section.writeToFile(nullptr);
  IncludesSection().writeToFile(nullptr);
  VarnFileRepository repository;
  repository.createDataTypesFile("types.h");
  for (const char* name : {"Typedefs", "Includes", "Functions"}) {
    repository.orvBridge().writeSection(0, name, nullptr);
  }
}

struct Writing {
  Buffering buffering;
  // The text written before.
  std::size_t pending;
  // The number of a write that fails.
  std::size_t failing;
};

// Write sizes match one fwrite per fragment.
void expectTheSameBlocks(const FileSection& section, const std::vector<std::string>& fragments,
                         const Writing& how) {
  const std::string pending(how.pending, 'p');
  const auto blocks = [&](auto write) {
    const auto writeAll = [&](FILE* stream) {
      static_cast<void>(std::fputs(pending.c_str(), stream));
      write(stream);
    };
    return writesTo(how.buffering, writeAll, how.failing);
  };
  const auto expected = blocks([&fragments](FILE* stream) {
    for (const std::string& fragment : fragments) {
      static_cast<void>(std::fwrite(fragment.data(), fragment.size(), 1, stream));
    }
  });
  ASSERT_EQ(expected, blocks([&section](FILE* stream) { section.writeToFile(stream); }))
      << "mode " << how.buffering.mode << ", size " << how.buffering.size << ", pending "
      << how.pending << ", failing " << how.failing;
}

TEST(FileSection, WriteSizesMatchOneWriteForEachFragment) {
  for (const std::size_t size : {256U, 257U, 1000U}) {
    for (const std::size_t filled : {size - 1, size, size + 1, 2 * size - 1, 2 * size}) {
      for (const std::size_t pending : {std::size_t{0}, std::size_t{100}, size}) {
        const std::vector<std::string> fragments{std::string(filled / 2, 'a'),
                                                 "",
                                                 std::string(filled - filled / 2, 'b'),
                                                 "c",
                                                 std::string(3 * size, 'd'),
                                                 "e",
                                                 "f"};
        FileSection section;
        for (const std::string& fragment : fragments) section.addContent(fragment);
        for (const std::size_t failing : {0U, 1U, 2U}) {
          expectTheSameBlocks(section, fragments, {{_IOFBF, size}, pending, failing});
        }
      }
    }
  }
}

// Sections, some of them in files of a repository, and beside each the fragments that it should
// hold.
class RandomRun {
 public:
  explicit RandomRun(unsigned int seed) : random_(seed) {
    addFile();
    addFile();
    for (int i = 0; i < 3; ++i) {
      auto own = std::make_unique<FunctionsSection>();
      FunctionsSection* section = own.get();
      sections_.push_back({std::move(own), section, {}});
    }
  }

  void step() {
    auto& [own, section, fragments] = sections_[below(sections_.size())];
    const std::size_t action = below(20);
    if (action == 19 && repository_) {
      addFile();
    } else if (action < 10) {
      const std::string text = someText();
      section->addContent(text);
      fragments.emplace_back(text.c_str());
    } else if (action < 14) {
      fragments.push_back(someText());
      section->addFragment(boost::make_shared<StringFileSectionFragment>(fragments.back()));
    } else if (action < 18) {
      const auto& [sourceOwn, source, sourceFragments] = sections_[below(sections_.size())];
      if (source == section || !own) return;
      own = cloneOf(*source);
      section = own.get();
      fragments = sourceFragments;
    } else {
      section->clearContent();
      fragments.clear();
    }
  }

  void check() {
    for (const auto& [own, section, fragments] : sections_) {
      std::string text;
      for (const std::string& fragment : fragments) text += fragment;
      ASSERT_EQ(fragments.size(), section->getNumberOfFunctions());
      ASSERT_EQ(fragments.empty(), section->isEmpty());
      ASSERT_EQ(text, section->getContent());
      ASSERT_EQ(text, printed(*section));
      checkWrites(*section, fragments);
      if (fragments.empty() || below(4) != 0) continue;
      const auto index = static_cast<unsigned int>(below(fragments.size()));
      ASSERT_EQ(fragments[index], section->getFunction(index));
    }
  }

  void endRepository() {
    const auto isInFile = [](const Checked& checked) { return !checked.own; };
    sections_.erase(std::remove_if(sections_.begin(), sections_.end(), isInFile), sections_.end());
    repository_.reset();
  }

 private:
  struct Checked {
    // Null for a section of the repository.
    std::unique_ptr<FunctionsSection> own;
    FunctionsSection* section;
    std::vector<std::string> fragments;
  };

  void addFile() {
    FileSection& section = repository_->createGenericFile("a.c").getFunctionsSection();
    sections_.push_back({nullptr, &dynamic_cast<FunctionsSection&>(section), {}});
  }

  void checkWrites(const FileSection& section, const std::vector<std::string>& fragments) {
    const Buffering bufferings[] = {{_IONBF, 0},   {_IOLBF, 512},  {_IOFBF, 100},
                                    {_IOFBF, 256}, {_IOFBF, 1000}, {_IOFBF, 4096}};
    const Buffering buffering = bufferings[below(std::size(bufferings))];
    expectTheSameBlocks(section, fragments, {buffering, below(300), below(5)});
  }

  std::size_t below(std::size_t end) { return random_() % end; }
  std::string someText() {
    const std::size_t longest[] = {40, 40, 40, 40, 200, 200, 200, 700, 5000, 300000};
    std::string text(below(longest[below(10)]), 'a');
    for (char& character : text) character = static_cast<char>('a' + below(26));
    if (below(8) == 0) text.insert(below(text.size() + 1), 1, '\0');
    if (below(4) == 0) text += '\n';
    return text;
  }

  std::mt19937 random_;
  std::unique_ptr<VarnFileRepository> repository_ = std::make_unique<VarnFileRepository>();
  std::vector<Checked> sections_;
};

TEST(FileSection, HoldsWhatAListOfStringsWouldHold) {
  for (unsigned int seed = 1; seed <= 30; ++seed) {
    RandomRun run(seed);
    for (int i = 0; i < 80; ++i) {
      run.step();
      if (i == 60) run.endRepository();
      run.check();
      ASSERT_FALSE(HasFatalFailure()) << "seed " << seed << ", step " << i;
    }
  }
}

}  // namespace
}  // namespace Varn
