#ifndef ORV_MODELS_XMLREADER_HPP
#define ORV_MODELS_XMLREADER_HPP

#include <cstdint>
#include <exception>
#include <expat.h>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "python/orv/native/models/XmlDocument.hpp"

namespace orv {

// Fills a document from its text, as expat reports it. Used once.
class XmlReader {
 public:
  explicit XmlReader(XmlDocument& document);

  // Throws ModelError.
  void read(std::string_view text);

 private:
  static void startElement(void* reader, const XML_Char* tag, const XML_Char** attributes);
  static void endElement(void* reader, const XML_Char* tag);
  static void characters(void* reader, const XML_Char* text, int size);
  static void entityDeclared(void* reader, const XML_Char* name, int isParameter,
                             const XML_Char* value, int size, const XML_Char* base,
                             const XML_Char* system, const XML_Char* publicId,
                             const XML_Char* notation);
  static void attributeDeclared(void* reader, const XML_Char* element, const XML_Char* attribute,
                                const XML_Char* type, const XML_Char* value, int isRequired);
  static int externalEntity(XML_Parser parser, const XML_Char* context, const XML_Char* base,
                            const XML_Char* system, const XML_Char* publicId);
  static int notStandalone(void* reader);

  void parse(std::string_view part, bool isLast);
  void parseBlock(std::string_view block, bool isLast);
  void open(const XML_Char* tag, const XML_Char** attributes);
  void close();
  void append(std::string_view text);
  void checkNodes() const;
  Location here() const;
  [[noreturn]] void fail(const std::string& reason) const;
  [[noreturn]] void failParsing() const;
  [[noreturn]] void failExpanding() const;

  // Runs what expat calls for: nothing is thrown through it, but read() throws it in the end.
  template <typename Action>
  void guard(Action action) noexcept;

  std::uint32_t name(std::string_view name);
  void countBytes(std::size_t size);
  void endText();

  XmlDocument& document_;
  std::string_view text_;
  std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser_;
  std::unordered_map<std::string, std::uint32_t> names_;
  std::vector<XmlDocument::Position> open_;
  // The bytes of all texts and attributes.
  std::size_t bytes_ = 0;
  // The text that is being read: the last node, if there is any.
  std::string pending_;
  std::size_t entities_ = 0;
  std::size_t declaredAttributes_ = 0;
  std::exception_ptr failure_;
};

}  // namespace orv

#endif
