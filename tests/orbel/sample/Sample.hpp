// A small library of boxes with items, as a module would expose it; some of its names are Python's.
#ifndef ORBEL_TESTS_SAMPLE_HPP
#define ORBEL_TESTS_SAMPLE_HPP

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <orbel/HandleClass.hpp>
#include <orbel/IndexGuard.hpp>
#include <orbel/PackageInfo.hpp>
#include <orbel/Text.hpp>
#include <orbel/Value.hpp>

namespace sample {

class Item : public orbel::HandleBase {
 public:
  Item() { ++alive; }
  explicit Item(std::string label) : Item() { label_ = std::move(label); }
  Item(const Item&) = delete;
  Item& operator=(const Item&) = delete;
  ~Item() override { --alive; }

  std::string getFullyQualifiedKoboTypeName() const override { return "Sample.Item"; }
  void prePropertySet(const std::string& property, const orbel::Value& value,
                      std::size_t size) override {
    log += "before " + property + " " + value.className() + " " + std::to_string(size) + "\n";
  }
  void postPropertySet(const std::string& property, const orbel::Value&, std::size_t) override {
    log += "after " + property + " " + label_ + "\n";
  }

  const std::string& label() const { return label_; }
  void setLabel(const std::string& label) { label_ = label; }
  std::u16string wideLabel() const { return orbel::toUtf16(label_); }
  const std::vector<std::string>& tags() const { return tags_; }
  void setTags(const std::vector<std::string>& tags) { tags_ = tags; }
  bool hidden() const noexcept { return hidden_; }
  void setHidden(bool hidden) { hidden_ = hidden; }
  bool isSameAs(const Item& other) const { return this == &other; }
  virtual std::string describe() const { return "item " + label_; }

  std::string log;
  static inline int alive = 0;

 private:
  std::string label_;
  std::vector<std::string> tags_;
  bool hidden_ = false;
};

// Larger than the storage that the host provides.
class Box : public Item {
 public:
  using Item::Item;
  std::string getFullyQualifiedKoboTypeName() const override { return "Sample.Box"; }
  std::string describe() const override { return "box " + label(); }

  Item& add(const std::string& label) {
    items_.push_back(std::make_unique<Item>(label));
    return *items_.back();
  }
  Item* find(const std::string& label) const {
    for (const auto& item : items_) {
      if (item->label() == label) return item.get();
    }
    return nullptr;
  }
  std::uint32_t count() const { return static_cast<std::uint32_t>(items_.size()); }
  const std::string& labelAt(std::uint32_t index) const { return items_[index - 1]->label(); }
  std::vector<Item*> list() {
    std::vector<Item*> result{this};
    for (const auto& item : items_) result.push_back(item.get());
    return result;
  }
  Item& first() { return *items_.front(); }
  const Item& first() const { return *items_.front(); }
  void clear() { items_.clear(); }
  void fail(const std::string& why) { throw std::runtime_error(why); }

 private:
  std::vector<std::unique_ptr<Item>> items_;
  [[maybe_unused]] std::array<char, 512> padding_{};
};

namespace mi {

class Item final : public orbel::HandleClass<sample::Item> {
 public:
  using HandleClass::HandleClass;
  bool exposesLibraryObjects() const override { return true; }
  void define() override {
    addSuperclass("orbel.mixin.Heterogeneous", false);
    addProperty("Label", &sample::Item::label, &sample::Item::setLabel);
    addProperty("WideLabel", &sample::Item::wideLabel);
    addProperty("Tags", &sample::Item::tags, &sample::Item::setTags);
    addProperty("Hidden", &sample::Item::hidden, &sample::Item::setHidden);
    addMethod("isSameAs", {"logical scalar", "Sample.Item", "Sample.Item"},
              &sample::Item::isSameAs);
    addMethod("describe", {"char", "Sample.Item"}, &sample::Item::describe);
    addConstructor<>({});
  }
};

class Box final : public orbel::HandleClass<sample::Box> {
 public:
  using HandleClass::HandleClass;
  bool exposesLibraryObjects() const override { return true; }
  void define() override {
    // In an order that Python does not allow for bases.
    addSuperclass("orbel.mixin.Heterogeneous", false);
    addSuperclass("Sample.Item", true);
    addProperty("__len__", &sample::Box::count);
    addObjectProperty("List", "Sample.Item", &sample::Box::list);
    addMethod("add", {"Sample.Item", "Sample.Box", "char vector"}, &sample::Box::add);
    addMethod("import", {"Sample.Item", "Sample.Box", "char"}, &sample::Box::add);
    addMethod("import_", {"void", "Sample.Box"}, &sample::Box::clear);
    addMethod("find", {"Sample.Item", "Sample.Box", "char"}, &sample::Box::find);
    addMethod("labelAt", {"char", "Sample.Box", "uint32 scalar"}, &sample::Box::labelAt,
              orbel::oneBasedIndex(&sample::Box::count));
    addMethod("first", {"Sample.Item", "Sample.Box"}, orbel::nonConst(&sample::Box::first));
    addMethod("clear", {"void", "Sample.Box"}, &sample::Box::clear);
    addMethod("fail", {"void", "Sample.Box", "char"}, &sample::Box::fail);
    addMethod("labelled", {"char", "Sample.Box", "char", "logical scalar"},
              [](sample::Box& box, const std::string& prefix, bool loud) {
                return prefix + box.label() + (loud ? "!" : "");
              });
    addConstructor<std::string>({"char"});
  }
};

class Shape final : public orbel::HandleClass<sample::Item> {
 public:
  using HandleClass::HandleClass;
  bool isAbstract() const override { return true; }
  void define() override {}
};

}  // namespace mi

class Package final : public orbel::PackageInfo {
 public:
  std::string getName() const override { return "Sample"; }
  std::string getDescription() const override { return "Boxes and items"; }
  void registerClasses(orbel::ClassRegistrar& registrar) override {
    registrar.addClass(std::make_unique<mi::Item>("Item", "Something to keep"));
    registrar.addClass(std::make_unique<mi::Box>("Box", "Keeps items"));
    registrar.addClass(std::make_unique<mi::Shape>("Shape", "Has no objects"));
  }
};

}  // namespace sample

#endif
