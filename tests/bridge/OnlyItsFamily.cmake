# cmake -DCOMPILER=... -DFLAGS=... -DSOURCE=... -P OnlyItsFamily.cmake
#
# Compiles SOURCE, a host file that serves only the cart family, and fails
# when any model header of another family reaches it: a host pays in build
# time for the families it serves and no others.
separate_arguments(flags UNIX_COMMAND "${FLAGS}")
list(FILTER flags EXCLUDE REGEX "^-I/usr/include$")  # a system directory stays where the compiler puts it
execute_process(COMMAND ${COMPILER} ${flags} -fsyntax-only -H ${SOURCE} RESULT_VARIABLE status ERROR_VARIABLE listing)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${SOURCE} does not compile:\n${listing}")
endif()
string(REGEX MATCHALL "[^\n]*websdk/(plugins|bridge/families)/[^\n]*" models "${listing}")
list(FILTER models EXCLUDE REGEX "websdk/plugins/commerce/Cart(Models)?\\.hpp$|websdk/bridge/families/Cart\\.hpp$")
list(FILTER models EXCLUDE REGEX "^[^.]")  # only -H's own lines, which start with dots
if(models)
  list(JOIN models "\n" shown)
  message(FATAL_ERROR "other families' headers reach ${SOURCE}:\n${shown}")
endif()
string(REGEX MATCHALL "websdk/plugins/commerce/Cart\\.hpp" cart "${listing}")
if(NOT cart)
  message(FATAL_ERROR "the check saw no cart model header at all: is -H listing headers?")
endif()
