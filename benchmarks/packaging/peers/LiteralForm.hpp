#ifndef VARN_BENCHMARKS_PACKAGING_PEERS_LITERALFORM_HPP
#define VARN_BENCHMARKS_PACKAGING_PEERS_LITERALFORM_HPP

#include <array>
#include <cstdio>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/unordered_map.hpp>
#include <boost/unordered_set.hpp>

namespace bench::literal {

// The simplest code that keeps the library's contracts: every fragment a separate object in a
// list, names looked up in hash maps of bound functions, repeated include lines found by searching
// the whole text.

class Fragment {
 public:
  Fragment() = default;
  Fragment(const Fragment&) = delete;
  Fragment& operator=(const Fragment&) = delete;
  virtual ~Fragment() = default;
  virtual const std::string& getContent() const = 0;
  virtual void writeToFile(FILE* stream) const = 0;
};

class StringFragment : public Fragment {
 public:
  explicit StringFragment(std::string_view text) : content_(text) {}
  const std::string& getContent() const override { return content_; }
  void writeToFile(FILE* stream) const override;

 private:
  std::string content_;
};

class Section {
 public:
  Section() = default;
  Section(const Section&) = delete;
  Section& operator=(const Section&) = delete;
  virtual ~Section() = default;

  void append(std::string_view text);
  void addFragment(boost::shared_ptr<Fragment> fragment);
  virtual const std::string& text() const;
  virtual void write(FILE* stream) const;

 private:
  [[maybe_unused]] void* handle_ = nullptr;
  std::list<boost::shared_ptr<Fragment>> fragments_;
  mutable std::string content_;
};

class IncludesSection : public Section {
 public:
  void setLists(const std::vector<std::string>& required, const std::vector<std::string>& utility);
  const std::string& text() const override;
  void write(FILE* stream) const override;

 private:
  boost::unordered_set<std::string> addedNames_;
  std::vector<std::string> required_;
  boost::unordered_set<std::string> requiredNames_;
  std::vector<std::string> utility_;
  boost::unordered_set<std::string> utilityNames_;
  mutable std::string composed_;
};

class FunctionsSection : public Section {
  std::vector<std::string> names_;
};

// A file with every attribute that files have.
struct File {
  explicit File(const std::string& name);

  static constexpr std::size_t kindCount = 22;

  std::array<std::unique_ptr<Section>, kindCount> sections;
  Section emptySection;
  std::u16string name;
  std::string nameAscii;
  std::string baseName;
  std::string nameWithoutExtension;
  std::string type;
  std::string creator;
  std::vector<std::string> systems;
  boost::unordered_set<std::string> systemNames;
  std::string codeTemplate;
  std::string outputDirectory;
  std::string group;
  std::string definedMacro;
  boost::unordered_map<int, std::vector<boost::shared_ptr<Section>>> customSections;
  boost::unordered_map<std::string, boost::shared_ptr<Section>> customSectionsByName;
  boost::unordered_set<std::string> tokensInUse;
};

class Repository {
 public:
  Repository();
  Repository(const Repository&) = delete;
  Repository& operator=(const Repository&) = delete;
  ~Repository() = default;

  void createFile(const std::string& name);
  void add(std::size_t file, const std::string& section, const char* text);
  void write(std::size_t file, const std::string& section, FILE* stream);

 private:
  static void addContent(File& file, const boost::shared_ptr<Fragment>& fragment, int kind);
  static void writeSection(File& file, FILE* stream, int kind);

  boost::unordered_map<std::string, boost::function<void(File&, boost::shared_ptr<Fragment>)>>
      adders_;
  boost::unordered_map<std::string, boost::function<void(File&, FILE*)>> writers_;
  std::vector<std::unique_ptr<File>> files_;
  boost::unordered_map<std::string, std::size_t> filesByName_;
};

}  // namespace bench::literal

#endif
