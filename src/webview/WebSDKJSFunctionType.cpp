#include "websdk/webview/WebSDKJSFunctionType.hpp"

#include <tuple>
#include <type_traits>
#include <variant>

namespace websdk {
namespace {

template <class V>
void writeArgument(std::string& out, PageArgument written, const V& value) {
  if constexpr (std::is_same_v<V, bool>) {
    const std::string_view word = value ? "true" : "false";
    if (written == PageArgument::quotedBool)
      out.append("'").append(word).append("'");
    else
      out.append(word);
  } else if constexpr (std::is_floating_point_v<V>) {
    out.append(formatDouble(value));
  } else if (written == PageArgument::tail) {
    out.append(value);
  } else {
    out.append("'").append(value).append("'");
  }
}

// "f(" + the record's members, each as its row writes it, + ")"; a tail
// argument brings its own closing.
template <class Record>
void writeCall(std::string& out, const PageFunction& f, const Record* record) {
  out.append(f.name).append("(");
  bool closed = false;
  if constexpr (!std::is_same_v<Record, void>) {
    std::size_t i = 0;
    std::apply(
        [&](const auto&... field) {
          ((out.append(i == 0 ? "" : f.separator), writeArgument(out, f.arguments[i], record->*(field.member)),
            closed = closed || f.arguments[i] == PageArgument::tail, ++i),
           ...);
        },
        Record::fields());
  }
  if (!closed) out.append(")");
}

}  // namespace

std::string WebSDKJSFunctionType::script() const {
  const PageFunction f = pageFunction(kind());
  std::string call;
  bool written = false;
  visitCarried([&](const auto* record) {
    writeCall(call, f, record);
    written = true;
  });
  if (!written) writeCall<void>(call, f, nullptr);
  switch (f.guard) {
    case PageCallGuard::none: return call;
    case PageCallGuard::whenDefined: return "window." + std::string(f.name) + " && window." + call;
    case PageCallGuard::whenInWindow: return "if ('" + std::string(f.name) + "' in window){ window." + call + "; }";
  }
  return call;
}

}  // namespace websdk
