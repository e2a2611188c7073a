#include "websdk/webview/WebSDKJSFunctionType.hpp"

#include "websdk/json/Quoted.hpp"

#include <tuple>
#include <type_traits>
#include <variant>

namespace websdk {
namespace {

// `text` as a JSON string literal; bytes that are not UTF-8 become '?'.
void writeLiteral(std::string& out, std::string_view text) {
  std::string repaired;
  if (!isValidUTF8(text)) {
    repaired.assign(text);
    for (char& c : repaired)
      if (static_cast<unsigned char>(c) >= 0x80) c = '?';
    text = repaired;
  }
  const std::size_t at = out.size();
  out.resize(at + quotedSize(text));
  writeQuoted(out.data() + at, text);
}

template <class V>
void writeArgument(std::string& out, PageArgument written, const V& value, bool escaped) {
  if constexpr (std::is_same_v<V, bool>) {
    const std::string_view word = value ? "true" : "false";
    if (written == PageArgument::quotedBool)
      out.append("'").append(word).append("'");
    else
      out.append(word);
  } else if constexpr (std::is_floating_point_v<V>) {
    out.append(formatDouble(value));
  } else if (escaped) {
    writeLiteral(out, value);
    if (written == PageArgument::tail) out.append(")");
  } else if (written == PageArgument::tail) {
    out.append(value);
  } else {
    out.append("'").append(value).append("'");
  }
}

// "f(" + the record's members, each as its row writes it, + ")"; a tail
// argument brings its own closing.
template <class Record>
void writeCall(std::string& out, const PageFunction& f, const Record* record, bool escaped) {
  out.append(f.name).append("(");
  bool closed = false;
  if constexpr (!std::is_same_v<Record, void>) {
    std::size_t i = 0;
    std::apply(
        [&](const auto&... field) {
          ((out.append(i == 0 ? "" : f.separator), writeArgument(out, f.arguments[i], record->*(field.member), escaped),
            closed = closed || f.arguments[i] == PageArgument::tail, ++i),
           ...);
        },
        Record::fields());
  }
  if (!closed) out.append(")");
}

}  // namespace

std::optional<std::string> WebSDKJSFunctionType::breakingText() const {
  if (escaped_) return std::nullopt;
  std::optional<std::string> found;
  visitCarried([&](const auto* record) {
    using Record = std::remove_cvref_t<decltype(*record)>;
    if constexpr (!std::is_same_v<Record, void>)
      std::apply(
          [&](const auto&... field) {
            const auto check = [&](const auto& value, PageArgument written) {
              if constexpr (std::is_same_v<std::remove_cvref_t<decltype(value)>, std::string>) {
                // A tail brings its own quotes; any other text is inside ours.
                const std::string_view v = value;
                const char* what = v.find('\\') != std::string_view::npos              ? "a backslash"
                                   : v.find_first_of("\r\n") != std::string_view::npos ? "a line break"
                                   : v.find("</script") != std::string_view::npos      ? "\"</script\""
                                   : written != PageArgument::tail && v.find('\'') != std::string_view::npos
                                       ? "a single quote"
                                       : nullptr;
                if (what != nullptr && !found) found = std::string(what);
              }
            };
            std::size_t i = 0;
            const PageFunction f = pageFunction(kind());
            ((check(record->*(field.member), f.arguments[i]), ++i), ...);
          },
          Record::fields());
  });
  return found;
}

std::string WebSDKJSFunctionType::script() const {
  const PageFunction f = pageFunction(kind());
  std::string call;
  bool written = false;
  visitCarried([&](const auto* record) {
    writeCall(call, f, record, escaped_);
    written = true;
  });
  if (!written) writeCall<void>(call, f, nullptr, escaped_);
  switch (f.guard) {
    case PageCallGuard::none: return call;
    case PageCallGuard::whenDefined: return "window." + std::string(f.name) + " && window." + call;
    case PageCallGuard::whenInWindow: return "if ('" + std::string(f.name) + "' in window){ window." + call + "; }";
  }
  return call;
}

}  // namespace websdk
