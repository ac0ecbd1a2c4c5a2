# The tests are few programs, because to link is what building them takes longest; ctest runs each file of tests in a
# process of its own all the same.

# kiv_add_test_program(<name> [GUI | X11] [LIBS <target>...])
#
# GUI gives its tests a QApplication instead of a QCoreApplication; X11 a QApplication on an X server of its own
# (tests/support/TestXServer.h).
function(kiv_add_test_program name)
  cmake_parse_arguments(P "GUI;X11" "" "LIBS" ${ARGN})
  add_executable(${name})
  if(P_X11)
    target_link_libraries(${name} PRIVATE kiv_x11_test_main)
  elseif(P_GUI)
    target_link_libraries(${name} PRIVATE kiv_gui_test_main)
  else()
    target_link_libraries(${name} PRIVATE kiv_test_main)
  endif()
  target_link_libraries(${name} PRIVATE kiv_options kiv_test_support ${P_LIBS})
  target_precompile_headers(${name} REUSE_FROM kiv_test_support)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
endfunction()

file(STRINGS ${CMAKE_SOURCE_DIR}/tests/environment KIV_TEST_ENVIRONMENT REGEX "^[A-Z_]+=")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/environment)

# kiv_add_tests(<program> FILES <file>... [DEFINITIONS <name=value>...] [DEPENDS <target>...]
#               [PREFIX <prefix>] [LABEL <label>] [TIMEOUT <seconds>])
#
# Adds files to the program. Each that ends in Test.cpp is a test of ctest's under its own name, after the prefix if
# there is one, started in the environment of tests/environment. DEFINITIONS and DEPENDS are the program's: what its
# tests are told, and what must have been built before they run.
function(kiv_add_tests program)
  cmake_parse_arguments(T "" "PREFIX;LABEL;TIMEOUT" "FILES;DEFINITIONS;DEPENDS" ${ARGN})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 120)
  endif()
  if(NOT T_LABEL)
    set(T_LABEL unit)
  endif()
  list(TRANSFORM T_FILES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(${program} PRIVATE ${T_FILES})
  target_compile_definitions(${program} PRIVATE ${T_DEFINITIONS})
  if(T_DEPENDS)
    add_dependencies(${program} ${T_DEPENDS})
  endif()
  set(environment ${KIV_TEST_ENVIRONMENT} ASAN_OPTIONS=detect_leaks=1
    LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/leaks.supp:print_suppressions=0)
  list(FILTER T_FILES INCLUDE REGEX "Test\\.cpp$")
  foreach(file IN LISTS T_FILES)
    kiv_suites_of(${file} filter)
    cmake_path(GET file STEM name)
    add_test(NAME ${T_PREFIX}${name} COMMAND ${program} --gtest_filter=${filter})
    set_tests_properties(${T_PREFIX}${name} PROPERTIES
      TIMEOUT ${T_TIMEOUT}
      LABELS "${T_LABEL}"
      ENVIRONMENT "${environment}")
  endforeach()
endfunction()

# kiv_add_python_test(<name> <file> [<argument>...]): tests of our Python and bash. They may import what lies in the
# tree, by its path from the top.
function(kiv_add_python_test name file)
  add_test(NAME ${name} COMMAND ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/${file} ${ARGN} -v)
  set_tests_properties(${name} PROPERTIES LABELS unit ENVIRONMENT "PYTHONPATH=${CMAKE_SOURCE_DIR}")
endfunction()

# The filter that selects the suites of a file of tests, those of its instantiations included. A suite lies in one file.
function(kiv_suites_of file result)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(STRINGS ${file} lines REGEX "^(TEST|TEST_F|TEST_P|TYPED_TEST)\\(")
  if(NOT lines)
    message(FATAL_ERROR "No test in ${file}")
  endif()
  list(TRANSFORM lines REPLACE "^[A-Z_]+\\(([A-Za-z0-9_]+).*" "\\1")
  list(REMOVE_DUPLICATES lines)
  foreach(suite IN LISTS lines)
    list(APPEND patterns "${suite}.*" "*/${suite}.*" "${suite}/*")
  endforeach()
  list(JOIN patterns ":" filter)
  set(${result} "${filter}" PARENT_SCOPE)
endfunction()
