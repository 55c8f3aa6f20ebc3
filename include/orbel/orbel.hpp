// The host object system, by reader.
//
// Authors of a module, which offers classes to scripts: a class derives from HandleBase, a
// HandleClass describes it, a PackageInfo registers the descriptions, the module's entry points
// (Module.hpp) add the package to the ObjectSystem. Errors are message records; their words are in
// the catalogue.
//
// Embedders, who bring a scripting language: Module loads a module, a Client finds classes and
// makes objects, ClassInfo lists members, Values go in and out.
//
// The third group is what HandleClass is made of. Neither reader names it: it is included by the
// headers above and described to whoever adds a C++ type to Conversion.hpp.
#ifndef ORBEL_ORBEL_HPP
#define ORBEL_ORBEL_HPP

// For authors of a module.
#include <orbel/ClassRegistrar.hpp>
#include <orbel/Diagnostics.hpp>
#include <orbel/FunctionTable.hpp>
#include <orbel/HandleBase.hpp>
#include <orbel/HandleClass.hpp>
#include <orbel/IndexGuard.hpp>
#include <orbel/MessageCatalogue.hpp>
#include <orbel/Name.hpp>
#include <orbel/ObjectSystem.hpp>
#include <orbel/PackageInfo.hpp>
#include <orbel/Text.hpp>

// For embedders.
#include <orbel/Arguments.hpp>
#include <orbel/CellArray.hpp>
#include <orbel/CharacterArray.hpp>
#include <orbel/ClassInfo.hpp>
#include <orbel/Client.hpp>
#include <orbel/Constructor.hpp>
#include <orbel/Handle.hpp>
#include <orbel/Member.hpp>
#include <orbel/Method.hpp>
#include <orbel/Module.hpp>
#include <orbel/ObjectArray.hpp>
#include <orbel/PackageInterface.hpp>
#include <orbel/Property.hpp>
#include <orbel/Signature.hpp>
#include <orbel/StringArray.hpp>
#include <orbel/Value.hpp>

// The templates in between.
#include <orbel/Binding.hpp>
#include <orbel/Conversion.hpp>
#include <orbel/Export.hpp>
#include <orbel/HostMemory.hpp>

#endif
