#include "python/orv/native/XmlReader.hpp"

#include <climits>
#include <new>

namespace orv {
namespace {

// The depth beyond which a document is refused: templates walk it by macros that call themselves.
constexpr std::size_t deepest = 499;

}  // namespace

XmlReader::XmlReader(XmlDocument& document)
    : document_(document), parser_(XML_ParserCreate(nullptr), &XML_ParserFree) {
  if (parser_ == nullptr) throw std::bad_alloc();
  XML_SetUserData(parser_.get(), this);
  XML_SetElementHandler(parser_.get(), &startElement, &endElement);
  XML_SetCharacterDataHandler(parser_.get(), &characters);
  XML_SetEntityDeclHandler(parser_.get(), &entity);
  // Expat reports what a document takes from elsewhere only when it is told to look for it.
  XML_SetParamEntityParsing(parser_.get(), XML_PARAM_ENTITY_PARSING_ALWAYS);
  XML_SetExternalEntityRefHandler(parser_.get(), &externalEntity);
  XML_SetSkippedEntityHandler(parser_.get(), &skippedEntity);
}

void XmlReader::read(std::string_view text) {
  if (text.size() > INT_MAX) throw XmlError("the document is larger than 2 GiB");
  const XML_Status status =
      XML_Parse(parser_.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
  if (failure_ != nullptr) std::rethrow_exception(failure_);
  if (status != XML_STATUS_OK) fail(XML_ErrorString(XML_GetErrorCode(parser_.get())));
}

void XmlReader::startElement(void* reader, const XML_Char* tag, const XML_Char** attributes) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] { self.open(tag, attributes); });
}

void XmlReader::endElement(void* reader, const XML_Char* /*tag*/) {
  static_cast<XmlReader*>(reader)->close();
}

void XmlReader::characters(void* reader, const XML_Char* text, int size) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] { self.append({text, static_cast<std::size_t>(size)}); });
}

void XmlReader::entity(void* reader, const XML_Char* name, int /*isParameter*/,
                       const XML_Char* /*value*/, int /*size*/, const XML_Char* /*base*/,
                       const XML_Char* /*system*/, const XML_Char* /*publicId*/,
                       const XML_Char* /*notation*/) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] {
    self.fail("the document declares the entity \"" + std::string(name) + "\", which is refused");
  });
}

int XmlReader::externalEntity(XML_Parser parser, const XML_Char* /*context*/,
                              const XML_Char* /*base*/, const XML_Char* /*system*/,
                              const XML_Char* /*publicId*/) {
  auto& self = *static_cast<XmlReader*>(XML_GetUserData(parser));
  self.guard([&] { self.fail("the document refers to another document, which is refused"); });
  return XML_STATUS_ERROR;
}

void XmlReader::skippedEntity(void* reader, const XML_Char* name, int /*isParameter*/) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] {
    self.fail("the document uses the entity \"" + std::string(name) +
              "\", which it does not declare");
  });
}

void XmlReader::open(const XML_Char* tag, const XML_Char** attributes) {
  if (open_.size() == deepest) {
    fail("elements are nested more than " + std::to_string(deepest) + " deep");
  }
  const auto begin = static_cast<std::uint32_t>(document_.attributes_.size());
  for (; *attributes != nullptr; attributes += 2) {
    const std::string_view value = attributes[1];
    document_.attributes_.push_back(
        {name(attributes[0]), store(value), static_cast<std::uint32_t>(value.size())});
  }
  const auto count = static_cast<std::uint32_t>(document_.attributes_.size()) - begin;
  open_.push_back(static_cast<XmlDocument::Position>(document_.nodes_.size()));
  document_.nodes_.push_back({name(tag), 0, begin, count});
  inText_ = false;
}

void XmlReader::close() {
  if (failure_ != nullptr) return;
  document_.nodes_[open_.back()].after =
      static_cast<XmlDocument::Position>(document_.nodes_.size());
  open_.pop_back();
  inText_ = false;
}

void XmlReader::append(std::string_view text) {
  std::vector<XmlDocument::Node>& nodes = document_.nodes_;
  const std::uint32_t begin = store(text);
  const auto size = static_cast<std::uint32_t>(text.size());
  if (inText_) {
    nodes.back().size += size;
    return;
  }
  const auto after = static_cast<XmlDocument::Position>(nodes.size() + 1);
  nodes.push_back({XmlDocument::noName, after, begin, size});
  inText_ = true;
}

void XmlReader::fail(const std::string& reason) const {
  throw XmlError("line " + std::to_string(XML_GetCurrentLineNumber(parser_.get())) + ": " + reason);
}

template <typename Action>
void XmlReader::guard(Action action) noexcept {
  // Expat reports an end or two after it was told to stop; the document is given up by then.
  if (failure_ != nullptr) return;
  try {
    action();
  } catch (...) {
    failure_ = std::current_exception();
    XML_StopParser(parser_.get(), XML_FALSE);
  }
}

std::uint32_t XmlReader::name(std::string_view name) {
  const auto [entry, isNew] =
      names_.try_emplace(std::string(name), static_cast<std::uint32_t>(document_.names_.size()));
  if (isNew) document_.names_.emplace_back(name);
  return entry->second;
}

std::uint32_t XmlReader::store(std::string_view text) {
  const auto begin = static_cast<std::uint32_t>(document_.texts_.size());
  document_.texts_.append(text);
  return begin;
}

}  // namespace orv
