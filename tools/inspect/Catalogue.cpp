#include "Catalogue.hpp"

#include "websdk/json/Schema.hpp"
#include "websdk/testing/Catalogue.hpp"
#include "websdk/webview/WebSDKJSFunctionType.hpp"

#include <string>
#include <type_traits>
#include <utility>

namespace websdk::inspect {
namespace {

// ---- Page functions ------------------------------------------------------------

// Each argument gets a telling sample (strings their own name, booleans true,
// numbers 1.5), so a reader of the script text can see where each one lands.
template <class Model>
JSONArray fillArguments(Model& model, const PageFunction& function) {
  JSONArray arguments;
  std::size_t i = 0;
  std::apply(
      [&](const auto&... f) {
        auto fill = [&](const auto& field) {
          auto& value = model.*(field.member);
          using V = std::remove_cvref_t<decltype(value)>;
          JSONObject argument;
          argument.emplace("name", field.name);
          if constexpr (std::is_same_v<V, bool>) {
            value = true;
            argument.emplace("type", "bool");
          } else if constexpr (std::is_floating_point_v<V>) {
            value = 1.5;
            argument.emplace("type", "double");
          } else {
            value = std::string(field.name);
            argument.emplace("type", "string");
          }
          argument.emplace("written", rawValue(function.arguments[i++]));
          arguments.push_back(std::move(argument));
        };
        (fill(f), ...);
      },
      Model::fields());
  return arguments;
}

template <WebSDKJSFunctionTypeCase C>
JSON pageFunction() {
  using T = WebSDKJSFunctionType;
  constexpr PageFunction function = T::pageFunction(C);
  JSONObject out;
  out.emplace("case", rawValue(C));
  out.emplace("function", function.name);
  if constexpr (requires { T::template make<C>(); }) {
    out.emplace("script", T::template make<C>().script());
    out.emplace("arguments", JSONArray{});
  } else {
    typename T::template ModelOf<C> model{};
    JSONArray arguments = fillArguments(model, function);
    out.emplace("script", T::template make<C>(model).script());
    out.emplace("arguments", std::move(arguments));
  }
  return out;
}

template <std::size_t... I>
JSONArray pageFunctions(std::index_sequence<I...>) {
  return JSONArray{pageFunction<static_cast<WebSDKJSFunctionTypeCase>(I)>()...};
}

}  // namespace

JSON catalogue() {
  JSONObject out;
  out.emplace("families", testing::catalogue(testing::libraryFamilies()).at("families"));
  out.emplace("pageFunctions", pageFunctions(std::make_index_sequence<caseCount<WebSDKJSFunctionTypeCase>()>{}));
  return out;
}

}  // namespace websdk::inspect
