#include "FileNames.hpp"

#include <algorithm>

#include "CNames.hpp"

namespace wayland {
namespace {

std::string fileName(const Protocol& protocol, const char* ending) {
  std::string name = protocol.name;
  std::replace(name.begin(), name.end(), '_', '-');
  return name + ending;
}

}  // namespace

std::string clientHeaderName(const Protocol& protocol) {
  return fileName(protocol, "-client-protocol.h");
}

std::string serverHeaderName(const Protocol& protocol) {
  return fileName(protocol, "-server-protocol.h");
}

std::string marshallingCodeName(const Protocol& protocol) {
  return fileName(protocol, "-protocol.c");
}

std::string enumerationsHeaderName(const Protocol& protocol) {
  return fileName(protocol, "-enums.h");
}

std::string umbrellaHeaderName(const Protocol& protocol) {
  return fileName(protocol, "-protocol.h");
}

std::vector<std::string> headerNames(const Protocol& protocol) {
  return {clientHeaderName(protocol), serverHeaderName(protocol), enumerationsHeaderName(protocol),
          umbrellaHeaderName(protocol)};
}

std::vector<std::string> fileNames(const Protocol& protocol) {
  std::vector<std::string> names = headerNames(protocol);
  names.push_back(marshallingCodeName(protocol));
  return names;
}

std::string includeGuard(const std::string& headerName) {
  std::string guard = capitals(headerName);
  std::replace_if(
      guard.begin(), guard.end(), [](char c) { return c == '-' || c == '.'; }, '_');
  return guard;
}

}  // namespace wayland
