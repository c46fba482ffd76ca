# Compiler and linker flags of the two kinds of build. Everything in the tree is compiled with the
# warnings below as errors; what comes from the platform or from GoogleTest is a system include.

add_library(build_warnings INTERFACE)
target_compile_options(build_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnull-dereference
  -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough -Wformat=2 -Wundef -Werror)

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 sees overlapping copies inside its own std::string when it optimises (GCC bug 105651).
  target_compile_options(build_warnings INTERFACE -Wno-restrict)
endif()

include_directories(${CMAKE_SOURCE_DIR})

# Paths of the build machine stay out of the binaries, so two builds of one commit are equal, whatever
# the folders are called. The last of the prefixes that fit is the one that counts.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=./build
  -fno-common)

if(WIN32)
  # UNICODE is left undefined on purpose: the code names the A or the W form that it means.
  add_compile_definitions(_WIN32_WINNT=0x0601 WINVER=0x0601)
  # One PE file and nothing beside it: the C++ runtime, threads and stack protector are linked in.
  add_compile_options(-fstack-protector-strong -ffunction-sections -fdata-sections)
  add_link_options(-static -fstack-protector-strong -Wl,--gc-sections
    -Wl,--no-insert-timestamp -Wl,--dynamicbase -Wl,--high-entropy-va -Wl,--nxcompat)
elseif(KESTREL_DRIVER)
  # A plain shared object of the machine that it runs on; it gets nothing of Windows.
  add_compile_options(-fno-omit-frame-pointer -ffunction-sections -fdata-sections)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
else()
  # Windows' own types on Linux: 16-bit wchar_t and the Windows headers that Wine brings.
  add_compile_options(-fshort-wchar -fno-omit-frame-pointer)
  add_compile_definitions(WINE_UNICODE_NATIVE _WIN32_WINNT=0x0601 WINVER=0x0601)
  include_directories(SYSTEM /usr/include/wine/wine/windows)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # clang has the needed extensions without the flag, and with it refuses these headers.
    add_compile_options(-fms-extensions)
  endif()
  # The runtime calls that Windows has and glibc lacks are declared before all else.
  add_compile_options(-include ${CMAKE_SOURCE_DIR}/tests/doubles/WindowsRuntime.h)
endif()

if(KESTREL_SANITIZE)
  add_compile_options(-fsanitize=${KESTREL_SANITIZE} -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KESTREL_SANITIZE})
endif()

if(KESTREL_FUZZ)
  # The counters that steer the fuzzer; only the targets have its main function.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(KESTREL_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()

if(KESTREL_TRAP)
  # mingw has no runtime that could print a report; the debugger of the tests sees the trap.
  add_compile_options(-fsanitize=undefined -fsanitize-undefined-trap-on-error)
endif()
