// JSON string literals, written on every answer's path (payloads can be
// megabytes) and by every serialisation, so written by hand: a first pass
// counts exactly how long the escaped text will be (and, for answers, checks
// that it is UTF-8), a second writes it into storage sized once. Both passes
// test sixteen bytes at a time; plain runs are copied a block at a time.
// Everything is written for either quote `Q`: JSON's, or a script's single
// quote, the one difference being which quote takes a backslash.

#include "websdk/json/Quoted.hpp"
#include "websdk/json/JSON.hpp"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace websdk {
namespace {

// What a byte becomes inside a string literal between quotes `Q`: 0 = itself,
// 'u' = \u00XX, anything else = a backslash and that character.
template <char Q>
constexpr auto kEscape = [] {
  std::array<char, 256> table{};
  for (int c = 0; c < 0x20; ++c) table[c] = 'u';
  table[static_cast<unsigned char>(Q)] = Q;
  table['\\'] = '\\';
  table['\n'] = 'n';
  table['\r'] = 'r';
  table['\t'] = 't';
  table['\b'] = 'b';
  table['\f'] = 'f';
  return table;
}();

// U+2028 and U+2029 end a line in JavaScript source, so they are escaped too.
inline bool isLineSeparator(std::string_view s, std::size_t i) {
  return i + 2 < s.size() && static_cast<unsigned char>(s[i + 1]) == 0x80 &&
         (static_cast<unsigned char>(s[i + 2]) & 0xFE) == 0xA8;
}

// The special byte at s[i]: how many bytes it takes written, how many it covers.
template <char Q>
inline std::size_t escapedWidth(std::string_view s, std::size_t i, std::size_t& consumed) {
  const auto c = static_cast<unsigned char>(s[i]);
  consumed = 1;
  if (c == 0xE2) {
    if (!isLineSeparator(s, i)) return 1;
    consumed = 3;
    return 6;
  }
  const char e = kEscape<Q>[c];
  return e == 0 ? 1 : e == 'u' ? 6 : 2;
}

template <char Q>
inline char* writeEscaped(char* out, std::string_view s, std::size_t& i) {
  static constexpr char hex[] = "0123456789abcdef";
  const auto c = static_cast<unsigned char>(s[i]);
  if (c == 0xE2) {
    if (isLineSeparator(s, i)) {
      std::memcpy(out, static_cast<unsigned char>(s[i + 2]) == 0xA8 ? "\\u2028" : "\\u2029", 6);
      i += 3;
      return out + 6;
    }
    *out = static_cast<char>(c);
    ++i;
    return out + 1;
  }
  ++i;
  const char e = kEscape<Q>[c];
  if (e == 'u') {
    const char u[6] = {'\\', 'u', '0', '0', hex[c >> 4], hex[c & 0xF]};
    std::memcpy(out, u, 6);
    return out + 6;
  }
  out[0] = '\\';
  out[1] = e;
  return out + 2;
}

// Checks the UTF-8 sequences from s[i] (a byte of 0x80 or more) up to the
// next ASCII byte; the index of that byte (or the end), or kNotUTF8.
std::size_t checkSequences(std::string_view s, std::size_t i) {
  const std::size_t n = s.size();
  while (i < n) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) return i;
    std::size_t len;
    std::uint32_t cp;
    if ((c & 0xE0) == 0xC0)
      len = 2, cp = c & 0x1F;
    else if ((c & 0xF0) == 0xE0)
      len = 3, cp = c & 0x0F;
    else if ((c & 0xF8) == 0xF0)
      len = 4, cp = c & 0x07;
    else
      return kNotUTF8;
    if (i + len > n) return kNotUTF8;
    for (std::size_t k = 1; k < len; ++k) {
      const auto cc = static_cast<unsigned char>(s[i + k]);
      if ((cc & 0xC0) != 0x80) return kNotUTF8;
      cp = (cp << 6) | (cc & 0x3F);
    }
    if ((len == 2 && cp < 0x80) || (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000) || cp > 0x10FFFF ||
        (cp >= 0xD800 && cp <= 0xDFFF))
      return kNotUTF8;
    i += len;
  }
  return n;
}

template <char Q>
inline bool isSpecial(unsigned char c) {
  return c < 0x20 || c == static_cast<unsigned char>(Q) || c == '\\' || c == 0xE2;
}

// Bits of a 16-bit mask, without relying on a popcount instruction.
inline std::size_t bitCount(unsigned m) {
  m = m - ((m >> 1) & 0x5555u);
  m = (m & 0x3333u) + ((m >> 2) & 0x3333u);
  m = (m + (m >> 4)) & 0x0F0Fu;
  return (m + (m >> 8)) & 0x1Fu;
}

#if defined(__SSE2__)
constexpr std::size_t kBlock = 16;

inline __m128i loadBlock(const char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void storeBlock(char* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline __m128i bytesEqual(__m128i v, char c) { return _mm_cmpeq_epi8(v, _mm_set1_epi8(c)); }
inline unsigned maskOf(__m128i m) { return static_cast<unsigned>(_mm_movemask_epi8(m)); }

// Bytes that need escaping: quote, backslash, control characters, and 0xE2
// (the lead byte of U+2028 and U+2029, checked more closely later).
template <char Q>
inline unsigned specialMask(__m128i v) {
  const __m128i control = _mm_cmpeq_epi8(_mm_max_epu8(v, _mm_set1_epi8(0x1F)), _mm_set1_epi8(0x1F));
  return maskOf(_mm_or_si128(_mm_or_si128(bytesEqual(v, Q), bytesEqual(v, '\\')),
                             _mm_or_si128(control, bytesEqual(v, static_cast<char>(0xE2)))));
}

// Of those, the ones that do not simply become two bytes.
inline unsigned rareMask(__m128i v) {
  const __m128i control = _mm_cmpeq_epi8(_mm_max_epu8(v, _mm_set1_epi8(0x1F)), _mm_set1_epi8(0x1F));
  const __m128i twoByte = _mm_or_si128(bytesEqual(v, '\n'), _mm_or_si128(bytesEqual(v, '\r'), bytesEqual(v, '\t')));
  return maskOf(_mm_or_si128(_mm_andnot_si128(twoByte, control), bytesEqual(v, static_cast<char>(0xE2))));
}
#endif

// The length of `s` as a string literal, or (when checking) kNotUTF8 when `s`
// is not UTF-8: one pass both counts and checks. `checked` is where the bytes
// not yet known to be UTF-8 begin.
template <bool kCheck, char Q>
[[gnu::noinline]] std::size_t sizeOf(std::string_view s) {
  std::size_t size = 2 + s.size(), i = 0, checked = 0;
  const std::size_t n = s.size();
#if defined(__SSE2__)
  while (i + kBlock <= n) {
    const __m128i v = loadBlock(s.data() + i);
    if (unsigned high = maskOf(v); kCheck && high != 0 && checked < i + kBlock) {
      if (checked > i) high &= ~0u << (checked - i);
      while (high != 0) {
        checked = checkSequences(s, i + static_cast<std::size_t>(std::countr_zero(high)));
        if (checked == kNotUTF8) return kNotUTF8;
        high = checked - i < kBlock ? high & (~0u << (checked - i)) : 0;
      }
    }
    const unsigned special = specialMask<Q>(v);
    if (special == 0) {
      i += kBlock;
      continue;
    }
    const unsigned rare = rareMask(v);
    if (rare == 0) {  // every special byte becomes two bytes
      size += bitCount(special);
      i += kBlock;
      continue;
    }
    // Count the two-byte escapes before the first rare byte, then step over it.
    const int k = std::countr_zero(rare);
    size += bitCount(special & ((1u << k) - 1));
    i += static_cast<std::size_t>(k);
    std::size_t consumed;
    size += escapedWidth<Q>(s, i, consumed);
    size -= consumed;
    i += consumed;
  }
#endif
  if (checked < i) checked = i;
  while (kCheck && checked < n) {
    checked = checkSequences(s, checked);
    if (checked == kNotUTF8) return kNotUTF8;
    while (checked < n && static_cast<unsigned char>(s[checked]) < 0x80) ++checked;
  }
  while (i < n) {
    if (!isSpecial<Q>(static_cast<unsigned char>(s[i]))) {
      ++i;
      continue;
    }
    std::size_t consumed;
    size += escapedWidth<Q>(s, i, consumed);
    size -= consumed;
    i += consumed;
  }
  return size;
}

// The two passes stay out of line, one copy per quote: inlined into the
// functions that pick the quote, the loops ran about 8% slower on JSON
// payloads full of escapes.
template <char Q>
[[gnu::noinline]] char* write(char* out, std::string_view s) {
  *out++ = Q;
  std::size_t i = 0;
  const std::size_t n = s.size();
#if defined(__SSE2__)
  // Plain bytes are stored a block at a time, even past an escape: the bytes
  // stored beyond it are overwritten by what follows. Escaping only lengthens
  // text, and at least two blocks of input remain, so no store runs past the
  // end of the sized output.
  while (i + 2 * kBlock <= n) {
    const unsigned special = specialMask<Q>(loadBlock(s.data() + i));
    if (special == 0) {
      storeBlock(out, loadBlock(s.data() + i));
      out += kBlock;
      i += kBlock;
      continue;
    }
    const std::size_t start = i, end = i + kBlock;
    unsigned pending = special;
    if (rareMask(loadBlock(s.data() + i)) == 0) {
      // Only two-byte escapes (quotes, backslashes, line breaks): the common case.
      while (pending != 0) {
        const auto next = start + static_cast<std::size_t>(std::countr_zero(pending));
        storeBlock(out, loadBlock(s.data() + i));
        out += next - i;
        out[0] = '\\';
        out[1] = kEscape<Q>[static_cast<unsigned char>(s[next])];
        out += 2;
        i = next + 1;
        pending &= pending - 1;
      }
    } else {
      while (pending != 0) {
        const auto next = start + static_cast<std::size_t>(std::countr_zero(pending));
        storeBlock(out, loadBlock(s.data() + i));
        out += next - i;
        i = next;
        out = writeEscaped<Q>(out, s, i);  // may step past the block (U+2028 at its end)
        if (i >= end) break;
        pending &= ~0u << (i - start);
      }
    }
    if (i < end) {
      storeBlock(out, loadBlock(s.data() + i));
      out += end - i;
      i = end;
    }
  }
#endif
  while (i < n) {
    if (isSpecial<Q>(static_cast<unsigned char>(s[i]))) {
      out = writeEscaped<Q>(out, s, i);
    } else {
      *out++ = s[i++];
    }
  }
  *out++ = Q;
  return out;
}

}  // namespace

std::size_t quotedSize(std::string_view s, Quote quote) {
  return quote == Quote::json ? sizeOf<true, '"'>(s) : sizeOf<true, '\''>(s);
}

char* writeQuoted(char* out, std::string_view s, Quote quote) {
  return quote == Quote::json ? write<'"'>(out, s) : write<'\''>(out, s);
}

void appendQuoted(std::string& out, std::string_view s) {
  const std::size_t at = out.size();
  out.resize(at + sizeOf<false, '"'>(s));
  write<'"'>(out.data() + at, s);
}

bool isValidUTF8(std::string_view s) {
  constexpr std::uint64_t kHighs = 0x8080808080808080ULL;
  auto load = [](const char* p) {
    std::uint64_t w;
    std::memcpy(&w, p, 8);
    return w;
  };
  std::size_t i = 0;
  const std::size_t n = s.size();
  while (i < n) {
    // ASCII runs, 32 bytes a step: answers are mostly ASCII and can be megabytes.
    while (i + 32 <= n) {
      const char* p = s.data() + i;
      if (((load(p) | load(p + 8) | load(p + 16) | load(p + 24)) & kHighs) != 0) break;
      i += 32;
    }
    while (i + 8 <= n && (load(s.data() + i) & kHighs) == 0) i += 8;
    if (i >= n) break;
    if (static_cast<unsigned char>(s[i]) < 0x80) {
      ++i;
      continue;
    }
    i = checkSequences(s, i);
    if (i == kNotUTF8) return false;
  }
  return true;
}

}  // namespace websdk
