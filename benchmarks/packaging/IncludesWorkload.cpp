#include <memory>
#include <stdexcept>

#include <varn/IncludesSection.hpp>

#include "Workloads.hpp"
#include "peers/LiteralForm.hpp"

namespace bench {
namespace {

struct Headers {
  std::vector<std::string> added;
  std::vector<std::string> required;
  std::vector<std::string> utility;
};

// `count` of each; one entry of four is among the added ones, and half are system headers.
Headers makeHeaders(std::size_t count) {
  Headers headers;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    const std::string added = "generated/module_" + number + "/interface.h";
    headers.added.push_back(added);
    const bool isAdded = i % 4 == 0;
    const bool isSystem = i % 2 == 1;
    const std::string required = isAdded ? added : "support/required_" + number + ".h";
    const std::string utility = isAdded ? added : "support/utility_" + number + ".h";
    headers.required.push_back(isSystem ? '<' + required + '>' : required);
    headers.utility.push_back(isSystem ? '<' + utility + '>' : utility);
  }
  return headers;
}

std::unique_ptr<Varn::IncludesSection> makeSection(const Headers& headers) {
  auto section = std::make_unique<Varn::IncludesSection>();
  for (const std::string& name : headers.added) section->addInclude(name, false);
  section->setRequiredIncludes(headers.required);
  section->setUtilityIncludes(headers.utility);
  return section;
}

std::unique_ptr<literal::IncludesSection> makeLiteralSection(const Headers& headers) {
  auto section = std::make_unique<literal::IncludesSection>();
  for (const std::string& name : headers.added) section->append("#include \"" + name + "\"\n");
  section->setLists(headers.required, headers.utility);
  return section;
}

void appendLine(std::string& text, const std::string& entry) {
  const bool isSystem = entry.front() == '<';
  text += isSystem ? "\n#include " : "\n#include \"";
  text += entry;
  text += isSystem ? "\n" : "\"\n";
}

// Every line, whether it is among the added ones or not.
std::string composeUntested(const Headers& headers, const Varn::IncludesSection& added) {
  std::string text;
  for (const std::string& entry : headers.required) appendLine(text, entry);
  for (const std::string& entry : headers.utility) {
    if (entry.front() == '<') appendLine(text, entry);
  }
  text += added.getContent();
  for (const std::string& entry : headers.utility) {
    if (entry.front() != '<') appendLine(text, entry);
  }
  return text;
}

template <typename Compose>
void addComposing(Measurements& measurements, const Subject& subject, const Compose& compose) {
  measurements.addBenchmark(subject, 1, [compose](benchmark::State& state) {
    for (auto step : state) {
      static_cast<void>(step);
      const auto& text = compose();
      benchmark::DoNotOptimize(text.data());
    }
  });
}

}  // namespace

void addIncludesWorkload(Measurements& measurements, const Scale& scale) {
  for (const std::size_t count : scale.includes) {
    const auto headers = std::make_shared<const Headers>(makeHeaders(count));
    const std::shared_ptr<Varn::IncludesSection> section = makeSection(*headers);
    const std::shared_ptr<literal::IncludesSection> peer = makeLiteralSection(*headers);
    const std::shared_ptr<Varn::IncludesSection> added = makeSection({headers->added, {}, {}});
    if (section->getContent() != peer->text()) {
      throw std::logic_error("the literal form gives other bytes: includes");
    }
    const std::string workload = "includes, " + std::to_string(count);
    addComposing(measurements, {workload, "varn"},
                 [section]() -> const std::string& { return section->getContent(); });
    addComposing(measurements, {workload, "literal"},
                 [peer]() -> const std::string& { return peer->text(); });
    addComposing(measurements, {workload, "every line"},
                 [headers, added] { return composeUntested(*headers, *added); });
  }
}

}  // namespace bench
