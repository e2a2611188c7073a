#include "websdk/json/Readings.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

namespace websdk {
namespace {

// Whole doubles read as integers print without a fraction, as pages expect
// ("5", not "5.0"); other doubles print as the JSON writer prints them.
std::string numberText(double d) {
  if (!std::isfinite(d)) return "";
  if (d == std::trunc(d) && std::fabs(d) < 1e15) {
    char buf[24];
    auto r = std::to_chars(buf, buf + sizeof buf, static_cast<std::int64_t>(d));
    return std::string(buf, r.ptr);
  }
  return formatDouble(d);
}

template <class I>
std::string intText(I i) {
  char buf[24];
  auto r = std::to_chars(buf, buf + sizeof buf, i);
  return std::string(buf, r.ptr);
}

// A decimal number written as text, surrounding blanks allowed: "3", " 3.7 ", "-1e3".
std::optional<double> parseNumber(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
  if (!s.empty() && s.front() == '+') s.remove_prefix(1);
  if (s.empty()) return std::nullopt;
  double d = 0;
  auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), d, std::chars_format::general);
  if (ec != std::errc() || end != s.data() + s.size() || !std::isfinite(d)) return std::nullopt;
  return d;
}

std::int64_t saturate(double d) {
  if (std::isnan(d)) return 0;
  constexpr double lo = static_cast<double>(std::numeric_limits<std::int64_t>::min());
  constexpr double hi = 9223372036854774784.0;  // the largest double below 2^63
  return static_cast<std::int64_t>(std::clamp(std::trunc(d), lo, hi));
}

}  // namespace

std::string lenientString(const JSON* v) {
  if (v == nullptr) return {};
  switch (v->kind()) {
    case boost::json::kind::string: return std::string(v->get_string());
    case boost::json::kind::int64: return intText(v->get_int64());
    case boost::json::kind::uint64: return intText(v->get_uint64());
    case boost::json::kind::double_: return numberText(v->get_double());
    case boost::json::kind::bool_: return v->get_bool() ? "true" : "false";
    default: return {};
  }
}

std::int64_t lenientInt(const JSON* v) {
  if (v == nullptr) return 0;
  switch (v->kind()) {
    case boost::json::kind::int64: return v->get_int64();
    case boost::json::kind::uint64:
      return static_cast<std::int64_t>(
          std::min<std::uint64_t>(v->get_uint64(), std::numeric_limits<std::int64_t>::max()));
    case boost::json::kind::double_: return saturate(v->get_double());
    case boost::json::kind::bool_: return v->get_bool() ? 1 : 0;
    case boost::json::kind::string: {
      const auto& s = v->get_string();
      std::int64_t i = 0;
      auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), i);
      if (ec == std::errc() && end == s.data() + s.size()) return i;
      return saturate(parseNumber(s).value_or(0));
    }
    default: return 0;
  }
}

std::optional<double> number(const JSON* v) {
  if (v == nullptr) return std::nullopt;
  switch (v->kind()) {
    case boost::json::kind::int64: return static_cast<double>(v->get_int64());
    case boost::json::kind::uint64: return static_cast<double>(v->get_uint64());
    case boost::json::kind::double_: return v->get_double();
    case boost::json::kind::bool_: return v->get_bool() ? 1.0 : 0.0;
    default: return std::nullopt;
  }
}

std::optional<std::string> strictString(const JSON* v) {
  if (v == nullptr) return std::nullopt;
  if (const auto* s = v->if_string()) return std::string(*s);
  return std::nullopt;
}

bool lenientBool(const JSON* v) {
  if (v == nullptr) return false;
  switch (v->kind()) {
    case boost::json::kind::bool_: return v->get_bool();
    case boost::json::kind::int64: return v->get_int64() != 0;
    case boost::json::kind::uint64: return v->get_uint64() != 0;
    case boost::json::kind::double_: return v->get_double() != 0;
    case boost::json::kind::string: {
      const auto& s = v->get_string();
      if (s.size() > 4) return false;
      std::string lower(s.size(), '\0');
      // ASCII folding: the process locale must not change what a page's
      // "TRUE" means (under a Turkish locale tolower leaves 'I' as it is).
      std::transform(s.begin(), s.end(), lower.begin(),
                     [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
      return lower == "true" || lower == "y" || lower == "t" || lower == "yes" || lower == "1";
    }
    default: return false;
  }
}

std::optional<bool> strictBool(const JSON* v) {
  if (v == nullptr) return std::nullopt;
  if (const auto* b = v->if_bool()) return *b;
  return std::nullopt;
}

double lenientDouble(const JSON* v) {
  if (v == nullptr) return 0;
  if (const auto* s = v->if_string()) return parseNumber(*s).value_or(0);
  return number(v).value_or(0);
}

std::optional<std::int64_t> integer(const JSON* v) {
  if (v == nullptr || v->is_string()) return std::nullopt;
  if (!number(v)) return std::nullopt;
  return lenientInt(v);
}

std::optional<JSONObject> object(const JSON* v) {
  if (v == nullptr) return std::nullopt;
  if (const auto* o = v->if_object()) return *o;
  return std::nullopt;
}

std::optional<JSONArray> array(const JSON* v) {
  if (v == nullptr) return std::nullopt;
  if (const auto* a = v->if_array()) return *a;
  return std::nullopt;
}

std::optional<std::map<std::string, std::string>> stringMap(const JSON* v) {
  if (v == nullptr || !v->is_object()) return std::nullopt;
  std::map<std::string, std::string> out;
  for (const auto& member : v->get_object()) out.emplace(member.key(), lenientString(&member.value()));
  return out;
}

std::optional<std::vector<std::string>> stringList(const JSON* v) {
  if (v == nullptr || !v->is_array()) return std::nullopt;
  std::vector<std::string> out;
  out.reserve(v->get_array().size());
  for (const auto& element : v->get_array()) out.push_back(lenientString(&element));
  return out;
}

bool yesText(const JSON* v) {
  const std::string text = lenientString(v);
  return text == "True" || text == "true" || text == "yes" || text == "1";
}

std::optional<std::int64_t> wholeNumberText(const JSON* v) {
  const std::string whole = lenientString(v);
  std::string_view text = whole;
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;  // "+-5", "+"
  }
  std::int64_t value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<JSON> raw(const JSON* v) {
  if (v == nullptr) return std::nullopt;
  return *v;
}

}  // namespace websdk
