# One target carries the standard, the warnings and Qt's strict definitions for every other.

include(CheckPIESupported)
check_pie_supported()
# The one that belongs to the compiler knows what the compiler writes.
string(REGEX MATCH "^[0-9]+" compiler_major "${CMAKE_CXX_COMPILER_VERSION}")
find_program(TARNWICK_LLD NAMES "ld.lld-${compiler_major}" ld.lld)
mark_as_advanced(TARNWICK_LLD)

add_library(tarnwick_options INTERFACE)
target_compile_features(tarnwick_options INTERFACE cxx_std_20)
target_compile_options(tarnwick_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # std::stable_sort of GCC 12's library uses a template that the library itself marks as deprecated.
  -Wno-deprecated-declarations
  # Libraries and programs alike, so that they can share one precompiled header.
  -fPIC)
if(TARNWICK_WERROR)
  target_compile_options(tarnwick_options INTERFACE -Werror)
endif()
target_compile_definitions(tarnwick_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_KEYWORDS QT_NO_FOREACH QT_STRICT_ITERATORS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_NO_CONTEXTLESS_CONNECT QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_link_libraries(tarnwick_options INTERFACE Threads::Threads)

# What distributions build with. The checks of the C library need an optimised build, and would hide from the
# sanitizers what those look for.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
target_compile_options(tarnwick_options INTERFACE -fstack-protector-strong -Wformat -Wformat-security)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  target_compile_options(tarnwick_options INTERFACE -fstack-clash-protection)
  target_link_options(tarnwick_options INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack,--as-needed)
endif()
if(NOT TARNWICK_SANITIZE)
  target_compile_options(tarnwick_options INTERFACE
    "$<$<NOT:$<CONFIG:Debug>>:SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3>")
  target_compile_definitions(tarnwick_options INTERFACE _GLIBCXX_ASSERTIONS)
endif()

if(TARNWICK_SANITIZE)
  target_compile_options(tarnwick_options INTERFACE
    -fsanitize=${TARNWICK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tarnwick_options INTERFACE -fsanitize=${TARNWICK_SANITIZE})
endif()
if(TARNWICK_FUZZ)
  target_compile_options(tarnwick_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(TARNWICK_LLD AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_link_options(tarnwick_options INTERFACE --ld-path=${TARNWICK_LLD})
endif()
