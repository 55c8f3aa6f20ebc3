#ifndef ORBEL_PYTHON_DOCUMENTATION_HPP
#define ORBEL_PYTHON_DOCUMENTATION_HPP

#include <string>
#include <vector>

#include <orbel/ClassInfo.hpp>

// The text that help() shows for a class and its members, from their definitions.
namespace orbel::python {

std::string classDocumentation(const ClassInfo& info);
// "name(Package.Class, char) returns void".
std::string methodDocumentation(const Method& method);
// "char vector" or "char vector, read only".
std::string propertyDocumentation(const Property& property);

// Python parameters, all positional, for the type words from `first` on: "text, number, /". They
// are named by their types, since definitions do not name them.
std::string parameterList(const std::vector<std::string>& words, std::size_t first);

// The first text property that a class has, its own before inherited ones; null without any.
const Property* firstTextProperty(const ClassInfo& info);

}  // namespace orbel::python

#endif
