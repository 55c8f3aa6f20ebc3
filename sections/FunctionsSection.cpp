#include "varn/FunctionsSection.hpp"

#include <cassert>
#include <utility>

namespace Varn {

FunctionsSection::FunctionsSection() = default;
FunctionsSection::FunctionsSection(const FunctionsSection& source) = default;
FunctionsSection::~FunctionsSection() = default;

std::string FunctionsSection::getFullyQualifiedKoboTypeName() const {
  return "Varn.FunctionsSection";
}

void FunctionsSection::addFunction(const std::string& name, const std::string& body) {
  if (functionNames_.size() == functionNames_.capacity()) {
    // Either argument may be a name in the list, which moves when it grows.
    const auto own = std::make_pair(name, body);
    functionNames_.reserve(2 * functionNames_.size() + 1);
    addFunction(own.first, own.second);
    return;
  }
  functionNames_.push_back(name);
  try {
    FileSection::addContent(body);
  } catch (...) {
    functionNames_.pop_back();
    throw;
  }
}

unsigned int FunctionsSection::getNumberOfFunctions() const {
  return getNumberOfSectionFragments();
}

unsigned int FunctionsSection::getNumberOfFunctionNames() const {
  return static_cast<unsigned int>(functionNames_.size());
}

const std::string& FunctionsSection::getFunction(unsigned int index) const {
  return FileSection::getSectionFragment(index);
}

const std::string& FunctionsSection::getFunctionName(unsigned int index) const {
  assert(index < functionNames_.size());
  return functionNames_[index];
}

const std::string& FunctionsSection::kobo_getFunction(unsigned int index) const {
  return getFunction(index - 1);
}

const std::string& FunctionsSection::kobo_getFunctionName(unsigned int index) const {
  return getFunctionName(index - 1);
}

FileSection* FunctionsSection::clone() const { return new FunctionsSection(*this); }

}  // namespace Varn
