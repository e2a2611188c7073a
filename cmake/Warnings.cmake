# Warnings for the WebSDK's own targets only, set on each target: nothing
# reaches a project that builds the WebSDK as its subproject, nor the
# installed package.

set(WEBSDK_WARNINGS -Wall -Wextra -Wpedantic)
if(WEBSDK_WERROR)
  list(APPEND WEBSDK_WARNINGS -Werror)
endif()

function(websdk_target_warnings target)
  target_compile_options(${target} PRIVATE ${WEBSDK_WARNINGS})
endfunction()

# Every target that compiles, defined in `dir` or below it. Called once after
# the whole tree is configured, so a new target anywhere gets the warnings
# without asking.
function(websdk_warnings_under dir)
  get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type MATCHES "^(EXECUTABLE|STATIC_LIBRARY|SHARED_LIBRARY|MODULE_LIBRARY|OBJECT_LIBRARY)$")
      websdk_target_warnings(${target})
    endif()
  endforeach()
  get_property(subdirectories DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
  foreach(subdirectory IN LISTS subdirectories)
    websdk_warnings_under(${subdirectory})
  endforeach()
endfunction()
