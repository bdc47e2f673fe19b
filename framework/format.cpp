#include "framework/format.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace kntr::fmt {

namespace {

std::string stars(int width) { return std::string(static_cast<std::size_t>(width), '*'); }

// Fit `body` right-aligned into `width`, or stars when it is too long.
std::string fit(const std::string& body, int width) {
  if (static_cast<int>(body.size()) > width) return stars(width);
  return std::string(static_cast<std::size_t>(width) - body.size(), ' ') + body;
}

// Mantissa digits and decimal exponent of |value| rounded to `digits`
// significant digits: |value| = 0.d1d2...dn * 10^exponent.
void decompose(double value, int digits, std::string& mantissa, int& exponent) {
  if (value == 0.0) {
    mantissa.assign(static_cast<std::size_t>(digits), '0');
    exponent = 0;
    return;
  }
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*e", digits - 1, std::fabs(value));
  // buffer is "d.ddde+XX"
  mantissa.clear();
  for (const char* p = buffer; *p && *p != 'e'; ++p)
    if (std::isdigit(static_cast<unsigned char>(*p))) mantissa.push_back(*p);
  const char* e = std::strchr(buffer, 'e');
  exponent = std::atoi(e + 1) + 1;
}

std::string exponentText(int exponent) {
  char buffer[16];
  if (std::abs(exponent) <= 99)
    std::snprintf(buffer, sizeof buffer, "E%c%02d", exponent < 0 ? '-' : '+', std::abs(exponent));
  else
    std::snprintf(buffer, sizeof buffer, "%c%03d", exponent < 0 ? '-' : '+', std::abs(exponent));
  return buffer;
}

}  // namespace

std::string I(long long value, int width) { return fit(std::to_string(value), width); }

std::string F(double value, int width, int decimals) {
  if (!std::isfinite(value)) return stars(width);
  char buffer[512];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
  std::string body = buffer;
  if (body == "-0" || (body.rfind("-0.", 0) == 0 &&
                       body.find_first_not_of("0.", 1) == std::string::npos))
    body.erase(0, 1);  // no negative zero
  // Drop the leading zero of "0.5" when the field has no room for it.
  if (static_cast<int>(body.size()) > width) {
    if (body.rfind("0.", 0) == 0)
      body.erase(0, 1);
    else if (body.rfind("-0.", 0) == 0)
      body.erase(1, 1);
  }
  return fit(body, width);
}

std::string E(double value, int width, int decimals) {
  if (!std::isfinite(value)) return stars(width);
  std::string mantissa;
  int exponent = 0;
  decompose(value, decimals, mantissa, exponent);
  if (value == 0.0) exponent = 0;
  std::string body = (value < 0.0 ? "-0." : "0.") + mantissa + exponentText(exponent);
  if (static_cast<int>(body.size()) > width) body.erase(value < 0.0 ? 1 : 0, 1);
  return fit(body, width);
}

std::string PE(double value, int width, int decimals) {
  if (!std::isfinite(value)) return stars(width);
  std::string mantissa;
  int exponent = 0;
  decompose(value, decimals + 1, mantissa, exponent);
  if (value == 0.0) exponent = 1;
  std::string body = std::string(value < 0.0 ? "-" : "") + mantissa.substr(0, 1) + "." +
                     mantissa.substr(1) + exponentText(exponent - 1);
  return fit(body, width);
}

std::string exact(double value) {
  char buffer[64];
  for (int precision = 15; precision <= 17; ++precision) {
    std::snprintf(buffer, sizeof buffer, "%.*g", precision, value);
    if (std::strtod(buffer, nullptr) == value) break;
  }
  std::string text = buffer;
  // Keep a decimal point or exponent so that the text reads as a real.
  if (text.find_first_of(".eEn") == std::string::npos) text += ".0";
  return text;
}

std::string pad(std::string_view text, int width) {
  std::string out(text.substr(0, static_cast<std::size_t>(width)));
  out.resize(static_cast<std::size_t>(width), ' ');
  return out;
}

std::string padLeft(std::string_view text, int width) {
  if (static_cast<int>(text.size()) >= width)
    return std::string(text.substr(text.size() - static_cast<std::size_t>(width)));
  return std::string(static_cast<std::size_t>(width) - text.size(), ' ') + std::string(text);
}

std::string repeat(std::string_view piece, int count) {
  std::string out;
  for (int i = 0; i < count; ++i) out += piece;
  return out;
}

int trimmedLength(std::string_view text) {
  int n = static_cast<int>(text.size());
  while (n > 0 && (text[static_cast<std::size_t>(n - 1)] == ' ' ||
                   text[static_cast<std::size_t>(n - 1)] == '\0'))
    --n;
  return n;
}

std::string_view trimmed(std::string_view text) {
  return text.substr(0, static_cast<std::size_t>(trimmedLength(text)));
}

std::string stripped(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\0'; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return std::string(text);
}

std::string upper(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

}  // namespace kntr::fmt
