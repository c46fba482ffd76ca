# Tests that run as Windows programs: under Wine on Linux (the toolchain file's emulator is put in
# front of the program), directly on Windows. All share one prefix in the build folder; the first
# test of a run makes it, and a server is held for it until the last one has ended.

set(KESTREL_WINE_PREFIX ${CMAKE_BINARY_DIR}/wineprefix)
# The locale decides the ANSI code page. The machine's driver manager looks for drivers in ODBCSYSINI,
# so that nothing has to be registered on the machine itself. No browser, .NET or menu entries are wanted in a prefix.
set(KESTREL_WINE_ENVIRONMENT
  "WINEPREFIX=${KESTREL_WINE_PREFIX}"
  "WINEDEBUG=-all,err+virtual"
  "WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe="
  "LC_ALL=C.UTF-8"
  "ODBCSYSINI=${KESTREL_DRIVER_FOLDER}")

if(CMAKE_CROSSCOMPILING)
  foreach(action begin end)
    add_test(NAME wine_prefix_${action}
      COMMAND ${CMAKE_CURRENT_LIST_DIR}/prefix.sh ${action} ${KESTREL_WINE_PREFIX})
    set_tests_properties(wine_prefix_${action} PROPERTIES
      ENVIRONMENT "${KESTREL_WINE_ENVIRONMENT}"
      ENVIRONMENT_MODIFICATION "DISPLAY=unset:"
      TIMEOUT 180)
  endforeach()
  set_tests_properties(wine_prefix_begin PROPERTIES FIXTURES_SETUP wine_prefix)
  set_tests_properties(wine_prefix_end PROPERTIES FIXTURES_CLEANUP wine_prefix)
endif()

# add_wine_test(<name> <target> [TIMEOUT <seconds>]) registers a GoogleTest program. The machine has
# one registry, so no two of these run side by side. The results go to test-results/<name>.json in
# the build folder: a relative path, since a Windows program takes no path that begins with a slash.
function(add_wine_test name target)
  cmake_parse_arguments(ARG "" "TIMEOUT" "" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 180)
  endif()
  add_test(NAME ${name}
    COMMAND ${target} --gtest_brief=1 --gtest_output=json:test-results/${name}.json
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "${KESTREL_WINE_ENVIRONMENT}"
    ENVIRONMENT_MODIFICATION "DISPLAY=unset:"
    RESOURCE_LOCK registry
    TIMEOUT ${ARG_TIMEOUT})
  if(CMAKE_CROSSCOMPILING)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine_prefix)
  endif()
endfunction()
