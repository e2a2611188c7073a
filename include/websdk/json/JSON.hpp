#pragma once
/// @file
/// The JSON value every model reads from, and the one text writer the WebSDK uses
/// for payloads, descriptions and tools.

#include "websdk/Export.hpp"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/string.hpp>
#include <boost/json/value.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace websdk {

using JSON = boost::json::value;         ///< Any JSON value.
using JSONObject = boost::json::object;  ///< A JSON object; keeps its keys in insertion order.
using JSONArray = boost::json::array;    ///< A JSON array.

/// Deepest nesting a page may send; deeper text reads as not JSON, so no
/// message can exhaust the stack of anything that walks the value.
inline constexpr std::size_t kMaxJSONDepth = 512;

/// Parses `text`. Text that is not JSON (or nests deeper than kMaxJSONDepth)
/// gives null. Never throws. Escapes of lone UTF-16 surrogates, which
/// JavaScript writes but the JSON parser refuses, read as U+FFFD.
WEBSDK_EXPORT JSON parseJSON(std::string_view text);

/// `text` with each escape of a lone UTF-16 surrogate written as U+FFFD's
/// escape, as parseJSON reads it; nothing when there is none.
WEBSDK_EXPORT std::optional<std::string> replaceLoneSurrogates(std::string_view text);

/// Compact JSON text. Doubles are written as formatDouble writes them; NaN
/// and infinities, which JSON has no text for, as null.
WEBSDK_EXPORT std::string serialize(const JSON& value);
/// The same text, appended to `out`.
WEBSDK_EXPORT void serializeTo(std::string& out, const JSON& value);

/// The same text, indented by two spaces per level, one member per line.
WEBSDK_EXPORT std::string serializePretty(const JSON& value);

/// serializePretty's text, or nothing when the value holds NaN or an infinity:
/// text with null in their place would say something the value does not.
WEBSDK_EXPORT std::optional<std::string> serializePrettyIfRepresentable(const JSON& value);

/// Shortest round-trip decimal of `d`. Magnitudes from 0.0001 up to 2^54
/// are written plain, whole ones with ".0" ("300.0", "0.0001", "-0.0");
/// others with a signed exponent of at least two digits ("1e+17", "1e-05",
/// "5e-324"). Non-finite values give "null".
WEBSDK_EXPORT std::string formatDouble(double d);

/// Appends `s` as a JSON string literal. Besides what JSON requires, U+2028
/// and U+2029 are escaped, so the text is also a valid JavaScript literal.
WEBSDK_EXPORT void appendQuoted(std::string& out, std::string_view s);

}  // namespace websdk
