# What `cmake --install` puts in place for host apps: the headers, the
# libraries, websdk-inspect, a CMake package (find_package(WebSDK CONFIG) with
# WebSDK::websdk, WebSDK::testing and, where they are built, the engines
# WebSDK::webkitgtk, WebSDK::webkitgtk6 and WebSDK::qtwebengine) and
# pkg-config files (websdk, websdk-testing, websdk-webkitgtk,
# websdk-webkitgtk6, websdk-qtwebengine).

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(WEBSDK_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/WebSDK)

# Every library websdk_library (cmake/Library.cmake) made, with its headers.
get_property(WEBSDK_LIBRARIES GLOBAL PROPERTY WEBSDK_LIBRARIES)
install(TARGETS ${WEBSDK_LIBRARIES} EXPORT WebSDKTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The engines, each with its own web-process module directory.
set(WEBSDK_HAS_WEBKITGTK OFF)
set(WEBSDK_HAS_WEBKITGTK6 OFF)
set(pcengines)
foreach(engine IN ITEMS webkitgtk webkitgtk6)
  if(NOT TARGET websdk_${engine})
    continue()
  endif()
  string(TOUPPER ${engine} ENGINE)
  set(WEBSDK_HAS_${ENGINE} ON)
  list(APPEND pcengines ${engine})
  # A host built against the installed package is told where the engine's
  # web-process module lies from the package's headers (engines/webkitgtk
  # installs it there). WebKitGTKConfiguration's default starts from the
  # headers' own place, so the package may lie anywhere. Targets in this build
  # tree get nothing.
  get_target_property(subdir websdk_${engine} WEBSDK_EXTENSIONS_SUBDIR)
  file(RELATIVE_PATH WEBSDK_INCLUDE_TO_${ENGINE}_EXTENSIONS /${CMAKE_INSTALL_INCLUDEDIR}
       /${CMAKE_INSTALL_LIBDIR}/websdk/${subdir})
  target_compile_definitions(websdk_${engine} INTERFACE
    "$<INSTALL_INTERFACE:WEBSDK_PACKAGE_WEB_EXTENSIONS_DIR=${WEBSDK_INCLUDE_TO_${ENGINE}_EXTENSIONS}>")
endforeach()
set(WEBSDK_HAS_QTWEBENGINE OFF)
if(TARGET websdk_qtwebengine)
  set(WEBSDK_HAS_QTWEBENGINE ON)
  list(APPEND pcengines qtwebengine)
endif()
if(TARGET websdk-inspect)
  # With shared libraries, the tool finds them beside its own bin/.
  file(RELATIVE_PATH WEBSDK_BIN_TO_LIB /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(websdk-inspect PROPERTIES INSTALL_RPATH "$ORIGIN/${WEBSDK_BIN_TO_LIB}")
  install(TARGETS websdk-inspect RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

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
foreach(engine IN LISTS pcengines)
  list(APPEND pcnames websdk-${engine})
endforeach()
foreach(pc IN LISTS pcnames)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${pc}.pc.in ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
