#include "python/orv/native/models/YamlScalar.hpp"

#include <algorithm>
#include <cstddef>
#include <initializer_list>

namespace orv {
namespace {

bool isOneOf(std::string_view scalar, std::initializer_list<std::string_view> forms) {
  return std::find(forms.begin(), forms.end(), scalar) != forms.end();
}

constexpr std::string_view decimalDigits = "0123456789";

bool consistsOf(std::string_view scalar, std::string_view characters) {
  return !scalar.empty() && scalar.find_first_not_of(characters) == std::string_view::npos;
}

std::string_view withoutSign(std::string_view scalar) {
  return scalar.substr(scalar.find_first_of("+-") == 0 ? 1 : 0);
}

// Digits with at most one point among or around them.
bool isMantissa(std::string_view scalar) {
  const std::size_t point = scalar.find('.');
  if (point == std::string_view::npos) return consistsOf(scalar, decimalDigits);
  const std::string_view whole = scalar.substr(0, point);
  const std::string_view fraction = scalar.substr(point + 1);
  const bool isFraction = fraction.empty() || consistsOf(fraction, decimalDigits);
  return whole.empty() ? !fraction.empty() && isFraction
                       : consistsOf(whole, decimalDigits) && isFraction;
}

bool isDecimal(std::string_view scalar) {
  const std::size_t exponent = scalar.find_first_of("eE");
  if (exponent == std::string_view::npos) return isMantissa(scalar);
  return isMantissa(scalar.substr(0, exponent)) &&
         consistsOf(withoutSign(scalar.substr(exponent + 1)), decimalDigits);
}

}  // namespace

YamlKind yamlKind(std::string_view scalar) {
  if (scalar.empty() || isOneOf(scalar, {"~", "null", "Null", "NULL"})) return YamlKind::null;
  if (isOneOf(scalar, {"true", "True", "TRUE", "false", "False", "FALSE"})) {
    return YamlKind::boolean;
  }
  if (scalar.find_first_of("+-.0123456789") != 0) return YamlKind::text;
  if (isOneOf(scalar, {".nan", ".NaN", ".NAN"})) return YamlKind::notFinite;
  const std::string_view number = withoutSign(scalar);
  if (consistsOf(number, decimalDigits)) return YamlKind::integer;
  if (isOneOf(number, {".inf", ".Inf", ".INF"})) return YamlKind::notFinite;
  if (isDecimal(number)) return YamlKind::decimal;
  const std::string_view digits = scalar.substr(std::min<std::size_t>(2, scalar.size()));
  if (scalar.substr(0, 2) == "0o" && consistsOf(digits, "01234567")) return YamlKind::octal;
  if (scalar.substr(0, 2) == "0x" && consistsOf(digits, "0123456789abcdefABCDEF")) {
    return YamlKind::hexadecimal;
  }
  return YamlKind::text;
}

const char* yamlKindName(YamlKind kind) {
  switch (kind) {
    case YamlKind::text:
      return "a text";
    case YamlKind::null:
      return "null";
    case YamlKind::boolean:
      return "a boolean";
    default:
      return "a number";
  }
}

}  // namespace orv
