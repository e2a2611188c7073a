#pragma once
/// @file
/// WEBSDK_FOR_EACH_ARG(m, a, x1, x2, ...) expands to m(a, x1) m(a, x2) ...
/// (up to 256 items), so that a record or case list is written once.

#define WEBSDK_PP_PARENS ()
#define WEBSDK_PP_EXPAND(...) WEBSDK_PP_EXPAND4(WEBSDK_PP_EXPAND4(WEBSDK_PP_EXPAND4(WEBSDK_PP_EXPAND4(__VA_ARGS__))))
#define WEBSDK_PP_EXPAND4(...) WEBSDK_PP_EXPAND3(WEBSDK_PP_EXPAND3(WEBSDK_PP_EXPAND3(WEBSDK_PP_EXPAND3(__VA_ARGS__))))
#define WEBSDK_PP_EXPAND3(...) WEBSDK_PP_EXPAND2(WEBSDK_PP_EXPAND2(WEBSDK_PP_EXPAND2(WEBSDK_PP_EXPAND2(__VA_ARGS__))))
#define WEBSDK_PP_EXPAND2(...) WEBSDK_PP_EXPAND1(WEBSDK_PP_EXPAND1(WEBSDK_PP_EXPAND1(WEBSDK_PP_EXPAND1(__VA_ARGS__))))
#define WEBSDK_PP_EXPAND1(...) __VA_ARGS__

/// Expands to macro(arg, x) for each further argument x.
#define WEBSDK_FOR_EACH_ARG(macro, arg, ...) \
  __VA_OPT__(WEBSDK_PP_EXPAND(WEBSDK_PP_FOR_EACH_HELPER(macro, arg, __VA_ARGS__)))
#define WEBSDK_PP_FOR_EACH_HELPER(macro, arg, a1, ...) \
  macro(arg, a1) __VA_OPT__(WEBSDK_PP_FOR_EACH_AGAIN WEBSDK_PP_PARENS(macro, arg, __VA_ARGS__))
#define WEBSDK_PP_FOR_EACH_AGAIN() WEBSDK_PP_FOR_EACH_HELPER
