# What `cmake --install` puts in place for host apps: the headers, the
# libraries, websdk-inspect, a CMake package (find_package(WebSDK CONFIG) with
# WebSDK::websdk, WebSDK::testing and, where it is built, WebSDK::webkitgtk)
# and pkg-config files (websdk, websdk-testing, websdk-webkitgtk).

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(WEBSDK_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/WebSDK)

# A library under the name host apps use, with its headers found in the source
# tree while building and under include/ once installed.
function(websdk_install_library target name headers)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  set_property(TARGET ${target} PROPERTY INTERFACE_INCLUDE_DIRECTORIES
               "$<BUILD_INTERFACE:${headers}>" "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  if(NOT TARGET WebSDK::${name})
    add_library(WebSDK::${name} ALIAS ${target})
  endif()
  install(DIRECTORY ${headers}/websdk DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.hpp")
  install(TARGETS ${target} EXPORT WebSDKTargets
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

websdk_install_library(websdk websdk ${PROJECT_SOURCE_DIR}/include)
websdk_install_library(websdk_testing testing ${PROJECT_SOURCE_DIR}/engines/testing/include)
set(WEBSDK_HAS_WEBKITGTK OFF)
if(TARGET websdk_webkitgtk)
  set(WEBSDK_HAS_WEBKITGTK ON)
  websdk_install_library(websdk_webkitgtk webkitgtk ${PROJECT_SOURCE_DIR}/engines/webkitgtk/include)
  # A host built against the installed package is told where the engine's
  # web-process module lies from the package's headers (engines/webkitgtk
  # installs it there). WebKitGTKConfiguration's default starts from the
  # headers' own place, so the package may lie anywhere. Targets in this build
  # tree get nothing.
  file(RELATIVE_PATH WEBSDK_INCLUDE_TO_WEB_EXTENSIONS /${CMAKE_INSTALL_INCLUDEDIR}
       /${CMAKE_INSTALL_LIBDIR}/websdk/web-extensions)
  target_compile_definitions(websdk_webkitgtk INTERFACE
    "$<INSTALL_INTERFACE:WEBSDK_PACKAGE_WEB_EXTENSIONS_DIR=${WEBSDK_INCLUDE_TO_WEB_EXTENSIONS}>")
endif()
install(TARGETS websdk-inspect RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(EXPORT WebSDKTargets NAMESPACE WebSDK:: DESTINATION ${WEBSDK_INSTALL_CMAKEDIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/WebSDKConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/WebSDKConfig.cmake
                              INSTALL_DESTINATION ${WEBSDK_INSTALL_CMAKEDIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/WebSDKConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/WebSDKConfig.cmake ${PROJECT_BINARY_DIR}/WebSDKConfigVersion.cmake
        DESTINATION ${WEBSDK_INSTALL_CMAKEDIR})

# pkg-config files find the prefix from where they lie, so any --prefix works.
file(RELATIVE_PATH WEBSDK_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
set(pcnames websdk websdk-testing)
if(WEBSDK_HAS_WEBKITGTK)
  list(APPEND pcnames websdk-webkitgtk)
endif()
foreach(pc IN LISTS pcnames)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${pc}.pc.in ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
