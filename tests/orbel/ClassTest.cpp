#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <orbel/ObjectSystem.hpp>

#include "RaisedText.hpp"
#include "sample/Sample.hpp"

namespace {

using orbel::CellArray;
using orbel::CharacterArray;
using orbel::Value;

Value text(const std::string& characters) { return Value(CharacterArray(characters)); }
Value number(std::uint32_t value) { return Value(value); }
Value texts(const std::vector<std::string>& list) { return Value(CellArray(list)); }

orbel::Client& client() {
  orbel::ObjectSystem& system = orbel::ObjectSystem::instance();
  if (!system.findPackage(orbel::Name("Sample"))) {
    system.addPackage(std::make_unique<sample::Package>());
  }
  return system.publicClient();
}

const orbel::ClassInfo& classInfo(const std::string& name) {
  return client().getClass("Sample." + name);
}

Value make(const std::string& name, const std::vector<Value>& arguments) {
  return client().construct(classInfo(name), arguments);
}

Value call(const std::string& method, const std::vector<Value>& arguments) {
  return classInfo("Box").getMethod(method).invoke(arguments);
}

Value get(const Value& object, const std::string& property) {
  return classInfo("Box").getProperty(property).get(object);
}

void set(const Value& object, const std::string& property, const Value& value) {
  classInfo("Box").getProperty(property).set(object, value);
}

TEST(Class, CallsMembersWithConvertedArguments) {
  sample::Box library("b");
  const Value box = library.toHostValue();
  const Value item = call("add", {box, Value(CharacterArray(u"\u00E9"))});
  EXPECT_EQ(item, library.first().toHostValue());
  EXPECT_EQ(call("first", {box}), item);
  EXPECT_EQ(call("labelAt", {box, number(1)}), text("\xC3\xA9"));
  EXPECT_EQ(call("labelAt", {box, Value(1.0)}), text("\xC3\xA9"));
  EXPECT_EQ(call("find", {box, text("none")}), Value(orbel::ObjectArray::none("Sample.Item")));
  EXPECT_EQ(call("labelled", {box, text("my "), Value(true)}), text("my b!"));
  EXPECT_EQ(call("isSameAs", {item, item}), Value(true));
  EXPECT_EQ(call("isSameAs", {item, box}), Value(false));
  EXPECT_EQ(call("describe", {box}), text("box b"));
  EXPECT_EQ(get(item, "WideLabel"), Value(CharacterArray(u"\u00E9")));
  orbel::ObjectArray list("Sample.Item", {*box.get<orbel::Handle>(), *item.get<orbel::Handle>()});
  list.markHeterogeneous();
  EXPECT_EQ(get(box, "List"), Value(list));
  EXPECT_EQ(call("clear", {box}), Value());
  EXPECT_EQ(library.count(), 0U);
}

TEST(Class, RefusesUnfitCallsBeforeAnythingHappens) {
  sample::Box library("b");
  library.add("x");
  const Value box = library.toHostValue();
  const Value item = library.first().toHostValue();
  const struct {
    const char* method;
    std::vector<Value> arguments;
    const char* error;
  } rows[] = {
      {"clear",
       {item},
       "WrongObjectClass: Sample.Box.clear needs an object of the class "
       "Sample.Box, but was given Sample.Item."},
      {"add", {box}, "WrongArgumentCount: Sample.Box.add takes 1 argument(s), but was given 0."},
      {"labelled",
       {box, text("a"), number(1)},
       "WrongArgumentClass: Argument 2 of Sample.Box.labelled must be logical scalar, but is "
       "uint32."},
      {"labelAt",
       {box, Value(0.5)},
       "WrongArgumentClass: Argument 1 of Sample.Box.labelAt must be uint32 scalar, but is "
       "double."},
      {"labelAt",
       {box, Value(4294967296.0)},
       "WrongArgumentClass: Argument 1 of Sample.Box.labelAt must be uint32 scalar, but is "
       "double."},
      {"labelAt", {box, number(0)}, "IndexOutOfRange: The index 0 is outside 1 to 1."},
      {"labelAt", {box, number(2)}, "IndexOutOfRange: The index 2 is outside 1 to 1."},
      {"isSameAs",
       {item, text("x")},
       "WrongArgumentClass: Argument 1 of Sample.Item.isSameAs must be Sample.Item, but is char."},
      {"missing", {box}, "UnknownMethod: The class Sample.Box has no method \"missing\"."},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(raisedText([&] { call(row.method, row.arguments); }),
              std::string("Orbel:") + row.error);
  }
  EXPECT_EQ(library.count(), 1U);
}

TEST(Class, SetsPropertiesBetweenTheHooks) {
  sample::Box library("b");
  const Value box = library.toHostValue();
  set(box, "Label", text("new"));
  set(box, "Hidden", Value(true));
  EXPECT_EQ(get(box, "Label"), text("new"));
  EXPECT_EQ(get(box, "Hidden"), Value(true));
  EXPECT_EQ(library.log,
            "before Label char 3\nafter Label new\nbefore Hidden logical 1\nafter Hidden new\n");
  const std::string label = "Orbel:WrongPropertyClass: The value of Sample.Item.";
  EXPECT_EQ(raisedText([&] { set(box, "Label", Value(1.0)); }),
            label + "Label must be char vector, but is double.");
  EXPECT_EQ(raisedText([&] { set(box, "WideLabel", text("x")); }),
            "Orbel:PropertyReadOnly: The property Sample.Item.WideLabel cannot be set.");
  EXPECT_EQ(raisedText([&] { set(text("x"), "Label", text("x")); }),
            "Orbel:WrongObjectClass: Sample.Item.Label needs an object of the class Sample.Item, "
            "but was given char.");
  EXPECT_EQ(raisedText([&] { get(box, "missing"); }),
            "Orbel:UnknownProperty: The class Sample.Box has no property \"missing\".");
  EXPECT_EQ(get(box, "Label"), text("new"));
}

TEST(Class, SetsListsOfTexts) {
  sample::Box library("b");
  const Value box = library.toHostValue();
  const Value kept = texts({"kept"});
  const std::pair<Value, Value> rows[] = {
      {texts({"a", "", "a"}), texts({"a", "", "a"})},
      {Value(orbel::StringArray({"s", "t"})), texts({"s", "t"})},
      {Value(), texts({})},
      {kept, kept},
      {Value(CellArray()), texts({})},
      {kept, kept},
  };
  for (const auto& [given, expected] : rows) {
    set(box, "Tags", given);
    EXPECT_EQ(get(box, "Tags"), expected);
  }
  std::string hooks;
  for (const char* given : {"cell 3", "string 2", "missing 0", "cell 1", "cell 0", "cell 1"}) {
    hooks += std::string("before Tags ") + given + "\nafter Tags b\n";
  }
  EXPECT_EQ(library.log, hooks);
  EXPECT_EQ(raisedText([&] { set(box, "Tags", text("a")); }),
            "Orbel:MustBeCellArray: The value of Sample.Item.Tags must be a cell array of "
            "character arrays, but is char.");
  EXPECT_EQ(raisedText([&] {
              set(box, "Tags", Value(CellArray(std::vector<Value>{text("a"), Value(1.0)})));
            }),
            "Orbel:MustBeString: Element 2 of the value of Sample.Item.Tags must be a character "
            "array.");
  EXPECT_EQ(get(box, "Tags"), kept);
}

TEST(Class, ScriptsOwnWhatTheyMake) {
  const int before = sample::Item::alive;
  for (const char* name : {"Item", "Box"}) {
    const std::vector<Value> arguments(name == std::string("Box") ? 1 : 0, text("made"));
    Value made = make(name, arguments);
    Value copy = made;
    made = Value();
    EXPECT_EQ(sample::Item::alive, before + 1) << name;
    EXPECT_EQ(copy, copy.get<orbel::Handle>()->object()->toHostValue()) << name;
    const Value again = copy;
    orbel::destroyObject(copy);
    EXPECT_EQ(sample::Item::alive, before) << name;
    EXPECT_EQ(raisedText([&] { call("describe", {again}); }),
              "Orbel:InvalidHandle: The object given to Sample.Item.describe no longer exists.");
    EXPECT_EQ(again.className(), "invalid object");
    make(name, arguments);
    EXPECT_EQ(sample::Item::alive, before) << name;
  }
  EXPECT_EQ(raisedText([] { make("Box", {}); }),
            "Orbel:WrongArgumentCount: Sample.Box.Box takes 1 argument(s), but was given 0.");
  EXPECT_EQ(raisedText([] { make("Box", {Value(true)}); }),
            "Orbel:WrongArgumentClass: Argument 1 of Sample.Box.Box must be char, but is logical.");
  EXPECT_EQ(raisedText([] { make("Shape", {}); }),
            "Orbel:AbstractClass: The class Sample.Shape is abstract: it has no objects of its "
            "own.");
}

TEST(Class, AHandleGivesItsObjectWhileItLives) {
  Value first;
  {
    sample::Box library("b");
    first = library.add("x").toHostValue();
    EXPECT_EQ(call("first", {library.toHostValue()}), first);
    EXPECT_EQ(orbel::HandleBase::fromHostValue(first, "Sample.Item"), &library.first());
    EXPECT_EQ(orbel::HandleBase::fromHostValue(library.toHostValue(), "Sample.Item"), &library);
    EXPECT_EQ(orbel::HandleBase::fromHostValue(first, "Sample.Box"), nullptr);
  }
  EXPECT_EQ(orbel::HandleBase::fromHostValue(first, "Sample.Item"), nullptr);
}

TEST(Class, RefusesObjectsThatAreNotWhatTheyClaim) {
  class Impostor final : public orbel::HandleBase {
   public:
    explicit Impostor(std::string name) : name_(std::move(name)) {}
    std::string getFullyQualifiedKoboTypeName() const override { return name_; }

   private:
    std::string name_;
  };
  Impostor box("Sample.Box");
  Impostor unknown("No.Such");
  EXPECT_EQ(raisedText([&] { call("clear", {box.toHostValue()}); }),
            "Orbel:ClassMismatch: An object says that its class is Sample.Box, but it is none.");
  EXPECT_EQ(raisedText([&] { call("clear", {unknown.toHostValue()}); }),
            "Orbel:WrongObjectClass: Sample.Box.clear needs an object of the class Sample.Box, but "
            "was given No.Such.");
}

}  // namespace
