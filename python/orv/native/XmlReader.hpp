#ifndef ORV_XMLREADER_HPP
#define ORV_XMLREADER_HPP

#include <cstdint>
#include <expat.h>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "python/orv/native/XmlDocument.hpp"

namespace orv {

// Fills a document from its text, as expat reports it. Used once.
class XmlReader {
 public:
  explicit XmlReader(XmlDocument& document);

  // Throws XmlError.
  void read(std::string_view text);

 private:
  static void startElement(void* reader, const XML_Char* tag, const XML_Char** attributes);
  static void endElement(void* reader, const XML_Char* tag);
  static void characters(void* reader, const XML_Char* text, int size);
  static void entity(void* reader, const XML_Char* name, int isParameter, const XML_Char* value,
                     int size, const XML_Char* base, const XML_Char* system,
                     const XML_Char* publicId, const XML_Char* notation);
  static int externalEntity(XML_Parser parser, const XML_Char* context, const XML_Char* base,
                            const XML_Char* system, const XML_Char* publicId);
  static void skippedEntity(void* reader, const XML_Char* name, int isParameter);

  void open(const XML_Char* tag, const XML_Char** attributes);
  void close();
  void append(std::string_view text);
  [[noreturn]] void fail(const std::string& reason) const;

  // Runs what expat calls for: nothing is thrown through it, but read() throws it in the end.
  template <typename Action>
  void guard(Action action) noexcept;

  std::uint32_t name(std::string_view name);
  std::uint32_t store(std::string_view text);

  XmlDocument& document_;
  std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser_;
  std::unordered_map<std::string, std::uint32_t> names_;
  std::vector<XmlDocument::Position> open_;
  // Whether the last node is a text that goes on.
  bool inText_ = false;
  std::exception_ptr failure_;
};

}  // namespace orv

#endif
