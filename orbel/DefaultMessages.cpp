#include "orbel/DefaultMessages.hpp"

namespace orbel {

const std::vector<DefaultMessage>& defaultMessages() {
  static const std::vector<DefaultMessage> messages = {
      {"UnknownPackage", "There is no package \"{1}\"."},
      {"UnknownClass", "There is no class \"{1}\"."},
      {"UnknownMethod", "The class {1} has no method \"{2}\"."},
      {"UnknownProperty", "The class {1} has no property \"{2}\"."},
      {"PackageExists", "A package \"{1}\" was added before."},
      {"ClassExists", "The package {1} has a class \"{2}\" already."},
      {"MemberExists", "The class {1} declares \"{2}\" twice."},
      {"SignatureMismatch", "The declaration of {1} does not fit what it calls: {2}."},
      {"SuperclassCycle", "The class {1} is among its own superclasses."},
      {"ClassMismatch", "An object says that its class is {1}, but it is none."},
      {"LibraryObjectHidden",
       "Scripts can only use objects of the class {1} that they made themselves."},
      {"PropertyReadOnly", "The property {1} cannot be set."},
      {"WrongArgumentCount", "{1} takes {2} argument(s), but was given {3}."},
      {"WrongArgumentClass", "Argument {2} of {1} must be {3}, but is {4}."},
      {"WrongObjectClass", "{1} needs an object of the class {2}, but was given {3}."},
      {"WrongPropertyClass", "The value of {1} must be {2}, but is {3}."},
      {"MustBeCellArray", "The value of {1} must be a cell array of character arrays, but is {2}."},
      {"MustBeString", "Element {2} of the value of {1} must be a character array."},
      {"InvalidHandle", "The object given to {1} no longer exists."},
      {"IndexOutOfRange", "The index {1} is outside 1 to {2}."},
      {"AbstractClass", "The class {1} is abstract: it has no objects of its own."},
      {"NoConstructor", "Scripts cannot make objects of the class {1}."},
      {"NotOwnedByScript",
       "The object of class {1} belongs to the library that made it: a script cannot destroy it."},
      {"ModuleNotLoaded", "The module \"{1}\" cannot be loaded: {2}."},
      {"ModuleIncomplete", "The file \"{1}\" is not a module: it does not export {2}."},
      {"ModuleSpent",
       "The module \"{1}\" was started before, and a module starts once in a process."},
  };
  return messages;
}

}  // namespace orbel
