#pragma once
/// @file
/// String enumerations declared once as a table of raw values. An enumeration E
/// opts in by declaring, in its own namespace,
///
/// ~~~{.cpp}
///   constexpr auto rawValues(E) { return websdk::rawValueTable<E>({{E::a, "A"}, ...}); }
/// ~~~
///
/// listing every case in declaration order. rawValue(e), fromRawValue<E>(s) and
/// allCases<E>() are derived from that one table.

#include "websdk/json/Preprocessor.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>

namespace websdk {

/// One row of an enumeration's table: a case and its raw value.
template <class E>
struct RawValue {
  E value;               ///< The case.
  std::string_view raw;  ///< The string that stands for it.
};

/// An enumeration's table from its rows, for its `rawValues` to return.
template <class E, std::size_t N>
constexpr std::array<RawValue<E>, N> rawValueTable(RawValue<E> (&&entries)[N]) {
  return std::to_array(std::move(entries));
}
/// The table of an enumeration with no cases.
template <class E>
constexpr std::array<RawValue<E>, 0> rawValueTable() {
  return {};
}

template <class E>
concept RawEnum = std::is_enum_v<E> && requires(E e) {
  rawValues(e);
};

namespace detail {
template <class E, std::size_t N>
constexpr bool isValidTable(const std::array<RawValue<E>, N>& table) {
  for (std::size_t i = 0; i < N; ++i) {
    // Cases in declaration order, so a case's raw value is one index away.
    if (static_cast<std::size_t>(table[i].value) != i) return false;
    for (std::size_t j = 0; j < i; ++j)
      if (table[i].raw == table[j].raw) return false;
  }
  return true;
}

// Whether V is one of its enumeration's named cases. The compiler spells a
// named case by its name in the function's signature, and any other value as
// a cast ("(E)3"): a table that stops before the enumeration's last case
// leaves the next value named.
template <auto V>
constexpr bool isNamedCase() {
  const std::string_view signature = __PRETTY_FUNCTION__;
  const auto at = signature.rfind("V = ");
  return at != std::string_view::npos && signature.substr(at + 4, 1) != "(";
}
}  // namespace detail

/// The raw value table of `E`.
template <RawEnum E>
inline constexpr auto enumTable = rawValues(E{});

/// How many cases `E` has; checks its table at compile time.
template <RawEnum E>
constexpr std::size_t caseCount() {
  static_assert(detail::isValidTable(enumTable<E>),
                "raw value table must list every case once, in declaration order, with unique raw values");
  static_assert(!detail::isNamedCase<static_cast<E>(enumTable<E>.size())>(),
                "raw value table must list every case: the enumeration has a case after the table's last");
  return enumTable<E>.size();
}

/// The raw value of `e` ("" for a value outside the table).
template <RawEnum E>
constexpr std::string_view rawValue(E e) {
  const auto i = static_cast<std::size_t>(e);
  return i < caseCount<E>() ? enumTable<E>[i].raw : std::string_view{};
}

/// The case whose raw value is exactly `raw` (case-sensitive), or nothing.
template <RawEnum E>
constexpr std::optional<E> fromRawValue(std::string_view raw) {
  for (std::size_t i = 0; i < caseCount<E>(); ++i)
    if (enumTable<E>[i].raw == raw) return enumTable<E>[i].value;
  return std::nullopt;
}

/// Every case, in declaration order.
template <RawEnum E>
constexpr auto allCases() {
  std::array<E, caseCount<E>()> cases{};
  for (std::size_t i = 0; i < cases.size(); ++i) cases[i] = enumTable<E>[i].value;
  return cases;
}

}  // namespace websdk

#define WEBSDK_DETAIL_CASE_NAME(E, c) ::websdk::RawValue<E>{E::c, #c},

/// Declares an enumeration whose raw values are its case names (the case tags
/// of typed payloads): WEBSDK_NAMED_CASES(Case, getCart, updateCart, ...).
#define WEBSDK_NAMED_CASES(E, ...)                                                                               \
  enum class E { __VA_ARGS__ };                                                                                  \
  constexpr auto rawValues(E) {                                                                                  \
    return std::to_array<::websdk::RawValue<E>>({WEBSDK_FOR_EACH_ARG(WEBSDK_DETAIL_CASE_NAME, E, __VA_ARGS__)}); \
  }
