#include "python/orv/native/models/XmlReader.hpp"

#include <algorithm>
#include <new>

#include "python/orv/native/models/XmlDoctype.hpp"

namespace orv {
namespace {

// The largest document, so that offsets fit 32 bits whatever it expands to.
constexpr std::size_t largestDocument = std::size_t{1} << 30;

// What a document may add to itself by entities and attribute defaults: the bytes of text, the
// nodes or attributes, and how many times its own size the parser may go through on the way.
constexpr std::size_t mostExpandedBytes = std::size_t{1} << 24;
constexpr std::size_t mostExpandedNodes = std::size_t{1} << 20;
constexpr float mostAmplified = 20;

// How much it may declare. As the parser calls itself for an entity within another, the first bound
// is that of its depth, too.
constexpr std::size_t mostEntities = 1000;
constexpr std::size_t mostDeclaredAttributes = 10000;

// The parser copies what it is given, and goes again through a token that is not complete. In
// blocks that grow with what was read, its copy is small and a document of one token takes linear
// time.
constexpr std::size_t smallestBlock = std::size_t{1} << 16;
constexpr std::size_t blocksInText = 8;

}  // namespace

XmlReader::XmlReader(XmlDocument& document)
    : document_(document), parser_(XML_ParserCreate(nullptr), &XML_ParserFree) {
  XML_Parser parser = parser_.get();
  if (parser == nullptr) throw std::bad_alloc();
  XML_SetUserData(parser, this);
  XML_SetElementHandler(parser, &startElement, &endElement);
  XML_SetCharacterDataHandler(parser, &characters);
  XML_SetEntityDeclHandler(parser, &entityDeclared);
  XML_SetAttlistDeclHandler(parser, &attributeDeclared);
  XML_SetExternalEntityRefHandler(parser, &externalEntity);
  XML_SetNotStandaloneHandler(parser, &notStandalone);
  XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser, mostAmplified);
}

void XmlReader::read(std::string_view text) {
  if (text.size() > largestDocument) throw ModelError({}, "the document is larger than 1 GiB");
  text_ = text;
  // The parser takes a reference to an external subset as permission to drop entities that nobody
  // declares. It gets to see blanks instead.
  const ExternalId id = externalIdOf(text);
  parse(text.substr(0, id.begin), false);
  parse(id.blanks, false);
  parse(text.substr(id.begin + id.blanks.size()), true);
}

void XmlReader::parse(std::string_view part, bool isLast) {
  std::size_t done = 0;
  while (done < part.size()) {
    const std::size_t size =
        std::min(part.size() - done, std::max(smallestBlock, done / blocksInText));
    parseBlock(part.substr(done, size), false);
    done += size;
  }
  if (isLast) parseBlock({}, true);
}

void XmlReader::parseBlock(std::string_view block, bool isLast) {
  const XML_Status status =
      XML_Parse(parser_.get(), block.data(), static_cast<int>(block.size()), isLast);
  if (failure_ != nullptr) std::rethrow_exception(failure_);
  if (status != XML_STATUS_OK) failParsing();
}

void XmlReader::failParsing() const {
  const XML_Error code = XML_GetErrorCode(parser_.get());
  if (code == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
  if (code == XML_ERROR_AMPLIFICATION_LIMIT_BREACH) {
    fail("the entities expand to more than 20 times the size of the document");
  }
  fail(XML_ErrorString(code));
}

void XmlReader::startElement(void* reader, const XML_Char* tag, const XML_Char** attributes) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] { self.open(tag, attributes); });
}

void XmlReader::endElement(void* reader, const XML_Char* /*tag*/) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] { self.close(); });
}

void XmlReader::characters(void* reader, const XML_Char* text, int size) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] { self.append({text, static_cast<std::size_t>(size)}); });
}

void XmlReader::entityDeclared(void* reader, const XML_Char* /*name*/, int /*isParameter*/,
                               const XML_Char* /*value*/, int /*size*/, const XML_Char* /*base*/,
                               const XML_Char* /*system*/, const XML_Char* /*publicId*/,
                               const XML_Char* /*notation*/) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] {
    if (++self.entities_ > mostEntities) {
      self.fail("the document declares more than " + std::to_string(mostEntities) + " entities");
    }
  });
}

void XmlReader::attributeDeclared(void* reader, const XML_Char* /*element*/,
                                  const XML_Char* /*attribute*/, const XML_Char* /*type*/,
                                  const XML_Char* /*value*/, int /*isRequired*/) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard([&] {
    if (++self.declaredAttributes_ > mostDeclaredAttributes) {
      self.fail("the document declares more than " + std::to_string(mostDeclaredAttributes) +
                " attributes");
    }
  });
}

int XmlReader::externalEntity(XML_Parser parser, const XML_Char* /*context*/,
                              const XML_Char* /*base*/, const XML_Char* /*system*/,
                              const XML_Char* /*publicId*/) {
  auto& self = *static_cast<XmlReader*>(XML_GetUserData(parser));
  self.guard(
      [&] { self.fail("the document uses an entity from another document, which is not read"); });
  return XML_STATUS_ERROR;
}

int XmlReader::notStandalone(void* reader) {
  auto& self = *static_cast<XmlReader*>(reader);
  self.guard(
      [&] { self.fail("the document takes declarations from elsewhere, which are not read"); });
  return XML_STATUS_ERROR;
}

void XmlReader::open(const XML_Char* tag, const XML_Char** attributes) {
  if (open_.size() == deepestModel) {
    fail("the model is nested more than " + std::to_string(deepestModel) + " deep");
  }
  endText();
  const auto firstAttribute = static_cast<std::uint32_t>(document_.attributes_.size());
  for (; *attributes != nullptr; attributes += 2) {
    const std::string_view value = attributes[1];
    countBytes(value.size());
    document_.attributes_.push_back({name(attributes[0]), document_.texts_.add(value)});
  }
  open_.push_back(static_cast<XmlDocument::Position>(document_.nodes_.size()));
  document_.nodes_.push_back(static_cast<std::uint32_t>(document_.elements_.size()));
  document_.elements_.push_back({name(tag), 0, firstAttribute, here().line});
  checkNodes();
}

void XmlReader::close() {
  endText();
  document_.elements_[document_.nodes_[open_.back()]].after =
      static_cast<XmlDocument::Position>(document_.nodes_.size());
  open_.pop_back();
}

void XmlReader::append(std::string_view text) {
  countBytes(text.size());
  if (pending_.empty()) {
    document_.nodes_.push_back(XmlDocument::textMark);
    checkNodes();
  }
  pending_.append(text);
}

void XmlReader::endText() {
  if (pending_.empty()) return;
  document_.nodes_.back() |= document_.texts_.add(pending_);
  pending_.clear();
}

void XmlReader::checkNodes() const {
  // In the text, a node takes more than two bytes and an attribute five.
  const std::size_t size = text_.size();
  if (document_.nodes_.size() > size / 2 + mostExpandedNodes ||
      document_.attributes_.size() > size / 5 + mostExpandedNodes) {
    failExpanding();
  }
}

Location XmlReader::here() const {
  return {static_cast<std::uint32_t>(XML_GetCurrentLineNumber(parser_.get())),
          static_cast<std::uint32_t>(XML_GetCurrentColumnNumber(parser_.get()) + 1)};
}

void XmlReader::fail(const std::string& reason) const { throw ModelError(here(), reason); }

void XmlReader::failExpanding() const {
  fail("entities and attribute defaults expand to more than 16 MiB or " +
       std::to_string(mostExpandedNodes) + " elements and attributes");
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

void XmlReader::countBytes(std::size_t size) {
  // A character takes two bytes at most in UTF-8 for each of its own encoding.
  const std::size_t most = 2 * text_.size() + mostExpandedBytes;
  if (size > most - bytes_) failExpanding();
  bytes_ += size;
}

}  // namespace orv
