#include "websdk/json/JSON.hpp"

#include "../Text.hpp"

#include <boost/json/parse.hpp>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

namespace websdk {

namespace {

// The code unit of the six-character escape starting at text[i], or -1.
int escapedUnit(std::string_view text, std::size_t i) {
  if (i + 6 > text.size() || text[i] != '\\' || text[i + 1] != 'u') return -1;
  int unit = 0;
  for (std::size_t k = i + 2; k < i + 6; ++k) {
    const int h = hexValue(text[k]);
    if (h < 0) return -1;
    unit = unit << 4 | h;
  }
  return unit;
}

JSON parse(std::string_view text, boost::json::error_code& ec) {
  boost::json::parse_options options;
  options.max_depth = kMaxJSONDepth;
  return boost::json::parse(text, ec, boost::json::storage_ptr(), options);
}

}  // namespace

// JavaScript strings may hold lone surrogates, and JSON.stringify writes them
// as escapes that the parser refuses. They become U+FFFD, as a page's own
// UTF-8 encoding makes them. Nothing when there is none.
std::optional<std::string> replaceLoneSurrogates(std::string_view text) {
  std::string out;
  std::size_t copied = 0;
  for (std::size_t i = text.find('\\'); i != std::string_view::npos && i + 1 < text.size(); i = text.find('\\', i)) {
    const int unit = escapedUnit(text, i);
    if (unit < 0xD800 || unit > 0xDFFF) {
      i += 2;  // any other escape, "\\" included
      continue;
    }
    if (unit <= 0xDBFF) {
      const int next = escapedUnit(text, i + 6);
      if (next >= 0xDC00 && next <= 0xDFFF) {
        i += 12;
        continue;
      }
    }
    out.append(text, copied, i - copied).append("\\ufffd");
    copied = i += 6;
  }
  if (copied == 0) return std::nullopt;
  return out.append(text, copied);
}

JSON parseJSON(std::string_view text) {
  boost::json::error_code ec;
  JSON value = parse(text, ec);
  if (!ec) return value;
  // Only failed text pays for the second look.
  if (const auto repaired = replaceLoneSurrogates(text)) {
    value = parse(*repaired, ec);
    if (!ec) return value;
  }
  return nullptr;
}

std::string formatDouble(double d) {
  if (!std::isfinite(d)) return "null";
  if (d == 0) return std::signbit(d) ? "-0.0" : "0.0";
  // The scientific form gives the shortest round-trip digits and their
  // exponent in one go ("-2.915e+02"); it is already the exponent layout.
  char buf[32];
  const auto end = std::to_chars(buf, buf + sizeof buf, d, std::chars_format::scientific).ptr;
  const std::string_view sci(buf, static_cast<std::size_t>(end - buf));
  const double magnitude = std::fabs(d);
  if (magnitude < 1e-4 || magnitude > 0x1p54) return std::string(sci);

  const std::size_t e = sci.find('e');
  int exponent = 0;
  std::from_chars(sci.data() + e + (sci[e + 1] == '+' ? 2 : 1), sci.data() + sci.size(), exponent);
  std::string digits;
  for (const char c : sci.substr(0, e))
    if (c >= '0' && c <= '9') digits += c;

  std::string out = d < 0 ? "-" : "";
  if (exponent < 0) {
    out.append("0.").append(static_cast<std::size_t>(-exponent - 1), '0').append(digits);
    return out;
  }
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= whole) {
    out.append(digits).append(whole - digits.size(), '0').append(".0");
  } else {
    out.append(digits, 0, whole).append(".").append(digits, whole);
  }
  return out;
}

namespace {

// False when the value held a number JSON has no text for (NaN or an
// infinity); "null" then stands in its place.
bool write(std::string& out, const JSON& v, int indent, int depth);

void newline(std::string& out, int indent, int depth) {
  if (indent < 0) return;
  out += '\n';
  out.append(static_cast<std::size_t>(indent * depth), ' ');
}

bool write(std::string& out, const JSON& v, int indent, int depth) {
  bool representable = true;
  switch (v.kind()) {
    case boost::json::kind::null: out += "null"; break;
    case boost::json::kind::bool_: out += v.get_bool() ? "true" : "false"; break;
    case boost::json::kind::int64: {
      char buf[24];
      auto r = std::to_chars(buf, buf + sizeof buf, v.get_int64());
      out.append(buf, r.ptr);
      break;
    }
    case boost::json::kind::uint64: {
      char buf[24];
      auto r = std::to_chars(buf, buf + sizeof buf, v.get_uint64());
      out.append(buf, r.ptr);
      break;
    }
    case boost::json::kind::double_:
      representable = std::isfinite(v.get_double());
      out += formatDouble(v.get_double());
      break;
    case boost::json::kind::string: appendQuoted(out, v.get_string()); break;
    case boost::json::kind::array: {
      const auto& a = v.get_array();
      out += '[';
      bool first = true;
      for (const auto& x : a) {
        if (!first) out += ',';
        first = false;
        newline(out, indent, depth + 1);
        representable &= write(out, x, indent, depth + 1);
      }
      if (!a.empty()) newline(out, indent, depth);
      out += ']';
      break;
    }
    case boost::json::kind::object: {
      const auto& o = v.get_object();
      out += '{';
      bool first = true;
      for (const auto& kv : o) {
        if (!first) out += ',';
        first = false;
        newline(out, indent, depth + 1);
        appendQuoted(out, kv.key());
        out += indent < 0 ? ":" : " : ";
        representable &= write(out, kv.value(), indent, depth + 1);
      }
      if (!o.empty()) newline(out, indent, depth);
      out += '}';
      break;
    }
  }
  return representable;
}

}  // namespace

void serializeTo(std::string& out, const JSON& value) { write(out, value, -1, 0); }

std::string serialize(const JSON& value) {
  std::string out;
  serializeTo(out, value);
  return out;
}

std::string serializePretty(const JSON& value) {
  std::string out;
  write(out, value, 2, 0);
  return out;
}

std::optional<std::string> serializePrettyIfRepresentable(const JSON& value) {
  std::string out;
  if (!write(out, value, 2, 0)) return std::nullopt;
  return out;
}

}  // namespace websdk
