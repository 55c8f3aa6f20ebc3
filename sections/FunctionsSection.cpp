#include "varn/FunctionsSection.hpp"

#include <cassert>

namespace Varn {

FunctionsSection::FunctionsSection() = default;
FunctionsSection::FunctionsSection(const FunctionsSection& source) = default;
FunctionsSection::~FunctionsSection() = default;

std::string FunctionsSection::getFullyQualifiedKoboTypeName() const {
  return "Varn.FunctionsSection";
}

void FunctionsSection::addFunction(const std::string& name, const std::string& body) {
  functionNames_.append(name.data(), name.size());
  try {
    FileSection::addContent(body);
  } catch (...) {
    functionNames_.undoAppend();
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
  assert(index < getNumberOfFunctionNames());
  return functionNames_.fragment(index).getContent();
}

const std::string& FunctionsSection::kobo_getFunction(unsigned int index) const {
  return getFunction(index - 1);
}

const std::string& FunctionsSection::kobo_getFunctionName(unsigned int index) const {
  return getFunctionName(index - 1);
}

FileSection* FunctionsSection::clone() const { return new FunctionsSection(*this); }

}  // namespace Varn
