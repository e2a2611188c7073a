#pragma once
/// @file
/// The business lines a page may name in a request's tenant.

#include "websdk/json/Enum.hpp"

namespace websdk {

/// The business lines a page may name. An unknown string is no tenant.
enum class Tenant { meals, zippa, tiffio, parcelo, mealsPWA, dovaraPurse, cellaro };
constexpr auto rawValues(Tenant) {
  using enum Tenant;
  return rawValueTable<Tenant>({{meals, "DV-MEALS"},
                                {zippa, "ZIPPA"},
                                {tiffio, "TIFFIO"},
                                {parcelo, "PARCELO"},
                                {mealsPWA, "DV-MEALS-PWA"},
                                {dovaraPurse, "DOVARA_PURSE"},
                                {cellaro, "CELLARO"}});
}

}  // namespace websdk
