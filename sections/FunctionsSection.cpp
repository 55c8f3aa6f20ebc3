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
  // Either argument may be a name in the list, which moves when it grows.
  std::string ownName(name);
  const std::string ownBody = body.substr(0, body.find('\0'));
  functionNames_.push_back(std::move(ownName));
  try {
    FileSection::addContent(ownBody);
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
