#include "DefaultMessages.hpp"

namespace orbel {

// The components of the host itself and of the code generators that it runs.
const std::vector<DefaultMessage>& defaultMessages() {
  static const std::vector<DefaultMessage> messages = {
      {"Pyx:codeGen", "CustomContentPreviousAssociation",
       "The custom section \"{1}\" cannot be attached to the built-in section \"{2}\": it is "
       "already attached to \"{3}\". The section of forward declarations shows as \"\"."},
      {"Pyx:codeGen", "CustomContentSectionDoesNotExist",
       "The file \"{1}\" has no custom section \"{2}\". Declare the section before adding content "
       "to it."},
      {"Pyx:codeGen", "CustomContentSectionAlreadyRetrieved",
       "The content of the custom section \"{1}\" cannot be given to \"{2}\": the content of "
       "\"{3}\" was retrieved before, and it can be placed only once."},
      {"Pyx:codeGen", "CustomContentInvalidBuiltin",
       "The custom section \"{1}\" cannot be attached to \"{2}\": there is no built-in section of "
       "that name."},
      {"Pyx:codeGen", "InvalidFileIndex",
       "The repository has no file with the index {1}. A file's index is its position in the file "
       "list, counted from 0."},
      {"Pyx:codeGen", "InvalidFileAttribute",
       "\"{1}\" is not the name of a file attribute or section that can be used here."},
      {"Pyx:codeGen", "DuplicateFileEntry",
       "The file name \"{1}\" was already given as \"{2}\". Names that differ only in letter case "
       "are one file on some file systems."},

      {"Orbel", "UnknownPackage", "There is no package \"{1}\"."},
      {"Orbel", "UnknownClass", "There is no class \"{1}\"."},
      {"Orbel", "UnknownMethod", "The class {1} has no method \"{2}\"."},
      {"Orbel", "UnknownProperty", "The class {1} has no property \"{2}\"."},
      {"Orbel", "PackageExists", "A package \"{1}\" was added before."},
      {"Orbel", "ClassExists", "The package {1} has a class \"{2}\" already."},
      {"Orbel", "MemberExists", "The class {1} declares \"{2}\" twice."},
      {"Orbel", "SignatureMismatch", "The declaration of {1} does not fit what it calls: {2}."},
      {"Orbel", "SuperclassCycle", "The class {1} is among its own superclasses."},
      {"Orbel", "ClassMismatch", "An object says that its class is {1}, but it is none."},
      {"Orbel", "LibraryObjectHidden",
       "Scripts can only use objects of the class {1} that they made themselves."},
      {"Orbel", "PropertyReadOnly", "The property {1} cannot be set."},
      {"Orbel", "WrongArgumentCount", "{1} takes {2} argument(s), but was given {3}."},
      {"Orbel", "WrongArgumentClass", "Argument {2} of {1} must be {3}, but is {4}."},
      {"Orbel", "WrongObjectClass", "{1} needs an object of the class {2}, but was given {3}."},
      {"Orbel", "WrongPropertyClass", "The value of {1} must be {2}, but is {3}."},
      {"Orbel", "MustBeCellArray",
       "The value of {1} must be a cell array of character arrays, but is {2}."},
      {"Orbel", "MustBeString", "Element {2} of the value of {1} must be a character array."},
      {"Orbel", "InvalidHandle", "The object given to {1} no longer exists."},
      {"Orbel", "IndexOutOfRange", "The index {1} is outside 1 to {2}."},
      {"Orbel", "AbstractClass", "The class {1} is abstract: it has no objects of its own."},
      {"Orbel", "NoConstructor", "Scripts cannot make objects of the class {1}."},
      {"Orbel", "NotOwnedByScript",
       "The object of class {1} belongs to the library that made it: a script cannot destroy it."},
      {"Orbel", "ModuleNotLoaded", "The module \"{1}\" cannot be loaded: {2}."},
      {"Orbel", "ModuleIncomplete", "The file \"{1}\" is not a module: it does not export {2}."},
      {"Orbel", "ModuleSpent",
       "The module \"{1}\" was started before, and a module starts once in a process."},
  };
  return messages;
}

}  // namespace orbel
