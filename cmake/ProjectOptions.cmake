# One interface target carries how every target of the house is compiled.
add_library(kiv_options INTERFACE)
target_compile_features(kiv_options INTERFACE cxx_std_20)
target_compile_definitions(kiv_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_compile_options(kiv_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi
  $<$<BOOL:${KIV_WARNINGS_AS_ERRORS}>:-Werror>)
if(CMAKE_UNITY_BUILD)
  # What one file calls a function of its own, the next may call a variable. And to GCC a type of an anonymous namespace
  # seems to come from a header.
  target_compile_options(kiv_options INTERFACE -Wno-shadow
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endif()

# kiv_compile_alone(<target> <file>...): not several at a time. Two kinds of file need it: a file whose functions tests
# replace by their own, because what is compiled with it would bring the replaced ones along; and a file that includes
# Xlib, whose macros ("None", "Status") break what is compiled after it.
function(kiv_compile_alone target)
  set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# kiv_calls_deprecated(<target> <file>...): files that make a call which macOS has declared deprecated, and which the rules
# of the agent name. Each such call is made by one function. Anywhere else it is a warning.
function(kiv_calls_deprecated target)
  if(APPLE)
    set_property(SOURCE ${ARGN} TARGET_DIRECTORY ${target} APPEND PROPERTY COMPILE_OPTIONS -Wno-deprecated-declarations)
  endif()
endfunction()

if(NOT APPLE)
  # A library that is linked but not used would still be mapped into every session.
  target_link_options(kiv_options INTERFACE -Wl,--as-needed)
endif()

if(KIV_SANITIZE)
  # Recovery is off so that undefined behaviour ends a test as an error.
  target_compile_options(kiv_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kiv_options INTERFACE -fsanitize=address,undefined)
  add_compile_options(-O1) # Not for the tests: see there.
endif()

if(KIV_COVERAGE)
  # Atomic, because Qt's threads call back into our code.
  target_compile_options(kiv_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(kiv_options INTERFACE --coverage)
endif()

if(KIV_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "The fuzzers need clang: set CXX=clang++")
  endif()
  target_compile_options(kiv_options INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kiv_options INTERFACE -fsanitize=address,undefined)
endif()
