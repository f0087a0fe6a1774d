#include "output/number_format.h"

#include <cstdio>

namespace fmt {

namespace {

template <typename... Args>
Formatted print(const char* format, Args... args) {
  char buffer[512];
  int n = std::snprintf(buffer, sizeof buffer, format, args...);
  if (n < 0) return {};
  if (static_cast<size_t>(n) < sizeof buffer) return {std::string(buffer, static_cast<size_t>(n))};
  std::string big(static_cast<size_t>(n) + 1, '\0');
  std::snprintf(big.data(), big.size(), format, args...);
  big.resize(static_cast<size_t>(n));
  return {big};
}

Formatted pad(std::string_view text, int width, bool on_right) {
  std::string s(text);
  if (width > 0 && s.size() < static_cast<size_t>(width)) {
    const std::string fill(static_cast<size_t>(width) - s.size(), ' ');
    s = on_right ? s + fill : fill + s;
  }
  return {s};
}

}  // namespace

Formatted fixed(double value, int width, int precision) {
  return print("%*.*f", width, precision, value);
}

Formatted fixed_ld(long double value, int width, int precision) {
  return print("%*.*Lf", width, precision, value);
}

Formatted general(double value, int width, int precision) {
  return print("%*.*g", width, precision, value);
}

Formatted general_ld(long double value, int width, int precision) {
  return print("%*.*Lg", width, precision, value);
}

Formatted sci(double value, int width, int precision) {
  return print("%*.*e", width, precision, value);
}

Formatted integer(long long value, int width) {
  return print("%*lld", width, value);
}

Formatted left(std::string_view text, int width) {
  return pad(text, width, true);
}

Formatted right(std::string_view text, int width) {
  return pad(text, width, false);
}

std::string xml_escape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

Formatted name(std::string_view text, bool xml) {
  return {xml ? xml_escape(text) : std::string(text)};
}

std::string to_fixed(double value, int precision) {
  return fixed(value, 0, precision).text;
}

std::string to_general(double value, int precision) {
  return general(value, 0, precision).text;
}

}  // namespace fmt
