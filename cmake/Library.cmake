# The WebSDK's libraries (websdk, websdk_testing, websdk_webkitgtk): their
# public headers, the name host apps use, and what a shared build needs.

include(GenerateExportHeader)

# websdk_library(TARGET NAME HEADERS_DIR): TARGET becomes WebSDK::NAME, its
# headers are the *.hpp under HEADERS_DIR (found there while building, under
# include/ once installed), and cmake/Install.cmake installs it.
function(websdk_library target name headers)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS ${headers}/*.hpp)
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${headers} FILES ${files})
  # Shared or static, only what the headers mark WEBSDK_EXPORT is the
  # library's interface. A 0.x release may break it with each minor version,
  # so the minor version is part of the soname.
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name}
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  # Installed side by side, the libraries find each other where they lie.
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "SHARED_LIBRARY")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
  if(NOT TARGET WebSDK::${name})
    add_library(WebSDK::${name} ALIAS ${target})
  endif()
  set_property(GLOBAL APPEND PROPERTY WEBSDK_LIBRARIES ${target})
endfunction()

# websdk/Export.hpp, installed with websdk's headers: WEBSDK_EXPORT marks what
# the libraries export. One macro serves all three, for on ELF exporting and
# importing a symbol are the same attribute.
function(websdk_export_header target)
  set(header ${PROJECT_BINARY_DIR}/include/websdk/Export.hpp)
  generate_export_header(${target} BASE_NAME websdk EXPORT_MACRO_NAME WEBSDK_EXPORT EXPORT_FILE_NAME ${header})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_BINARY_DIR}/include FILES ${header})
endfunction()
