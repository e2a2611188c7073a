#pragma once
/// @file
/// JSON string literals: the one writer of them, for answers' envelopes and
/// every serialisation. A literal is also a valid JavaScript string literal:
/// control characters, quotes, backslashes, U+2028 and U+2029 are escaped,
/// everything else stays as it is. For a script alone, the same literal can
/// stand between single quotes instead.

#include "websdk/Export.hpp"

#include <cstddef>
#include <string_view>

namespace websdk {

/// The quote a literal stands between. `script`: a single quote, for text
/// that only JavaScript reads; the double quotes that fill JSON text then
/// need no backslash, and a page's parser reads such a literal faster.
enum class Quote : char { json = '"', script = '\'' };

/// What quotedSize() gives for text that is not well-formed UTF-8.
inline constexpr std::size_t kNotUTF8 = static_cast<std::size_t>(-1);

/// The length of `s` written as a literal between `quote`s, quotes included,
/// or kNotUTF8 when `s` is not well-formed UTF-8.
WEBSDK_EXPORT std::size_t quotedSize(std::string_view s, Quote quote = Quote::json);

/// Writes `s` as a literal between `quote`s at `out`, which has room for
/// quotedSize(s, quote) bytes; returns the end of what it wrote.
WEBSDK_EXPORT char* writeQuoted(char* out, std::string_view s, Quote quote = Quote::json);

/// Whether `bytes` is well-formed UTF-8.
WEBSDK_EXPORT bool isValidUTF8(std::string_view bytes);

}  // namespace websdk
