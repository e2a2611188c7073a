#include "Pushes.hpp"

#include <charconv>
#include <tuple>
#include <type_traits>
#include <utility>

namespace websdk::serve {
namespace {

using T = WebSDKJSFunctionType;

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// The next word of `rest`, or all of it for the last argument.
std::string_view take(std::string_view& rest, bool last) {
  rest = trimmed(rest);
  if (last) return std::exchange(rest, std::string_view{});
  const auto end = std::min(rest.find_first_of(" \t"), rest.size());
  const auto word = rest.substr(0, end);
  rest.remove_prefix(end);
  return word;
}

template <class V>
bool readArgument(std::string_view word, V& value) {
  if constexpr (std::is_same_v<V, bool>) {
    if (word != "true" && word != "false") return false;
    value = word == "true";
    return true;
  } else if constexpr (std::is_floating_point_v<V>) {
    const auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), value);
    return ec == std::errc() && end == word.data() + word.size();
  } else {
    value = std::string(word);
    return true;
  }
}

template <WebSDKJSFunctionTypeCase C>
bool tryCase(std::string_view name, std::string_view rest, std::optional<Push>& out, std::string& error) {
  constexpr PageFunction function = T::pageFunction(C);
  if (name != rawValue(C) && name != function.name) return false;
  if constexpr (requires { T::template make<C>(); }) {
    if (!trimmed(rest).empty()) {
      error = std::string(rawValue(C)) + " takes no arguments";
      return true;
    }
    out = T::template make<C>();
  } else {
    using Model = typename T::template ModelOf<C>;
    Model model{};
    constexpr std::size_t count = std::tuple_size_v<std::remove_cvref_t<decltype(Model::fields())>>;
    std::size_t i = 0;
    bool fine = true;
    std::apply(
        [&](const auto&... field) {
          const auto fill = [&](const auto& f) {
            auto& value = model.*(f.member);
            const std::string_view word = take(rest, ++i == count);
            if (fine && (word.empty() || !readArgument(word, value))) {
              using V = std::remove_cvref_t<decltype(value)>;
              fine = false;
              error = std::string(rawValue(C)) + ": its argument \"" + std::string(f.name) + "\" is " +
                      (std::is_same_v<V, bool>       ? "true or false"
                       : std::is_floating_point_v<V> ? "a number"
                                                     : "text") +
                      (word.empty() ? ", and is missing" : ", not " + std::string(word));
            }
          };
          (fill(field), ...);
        },
        Model::fields());
    if (fine) out = T::template make<C>(model);
  }
  return true;
}

template <std::size_t... I>
std::optional<Push> readFunction(std::string_view name, std::string_view rest, std::string& error,
                                 std::index_sequence<I...>) {
  std::optional<Push> out;
  (tryCase<static_cast<WebSDKJSFunctionTypeCase>(I)>(name, rest, out, error) || ...);
  return out;
}

template <std::size_t... I>
std::string help(std::index_sequence<I...>) {
  std::string out;
  ((out += "  " + std::string(rawValue(static_cast<WebSDKJSFunctionTypeCase>(I))) + " (" +
           std::string(T::pageFunction(static_cast<WebSDKJSFunctionTypeCase>(I)).name) + ")\n"),
   ...);
  return out;
}

constexpr auto kCases = std::make_index_sequence<caseCount<WebSDKJSFunctionTypeCase>()>{};

}  // namespace

std::optional<Push> readPush(std::string_view line, std::string& error) {
  std::string_view rest = trimmed(line);
  const std::string_view name = take(rest, false);
  if (name == "js") {
    if (trimmed(rest).empty()) {
      error = "js takes a script";
      return std::nullopt;
    }
    return RawScript{std::string(trimmed(rest))};
  }
  error.clear();
  auto push = readFunction(name, rest, error, kCases);
  if (!push && error.empty()) error = "no page function \"" + std::string(name) + "\" (type help for the list)";
  return push;
}

std::string pushHelp() {
  return "pushes: a page function and its arguments (the last takes the rest of the line), or js SCRIPT\n" +
         help(kCases);
}

}  // namespace websdk::serve
