# kiv_add_test(<name> SOURCES <file>... [LIBS <target>...] [GUI | X11] [LABELS <label>...] [TIMEOUT <seconds>])
#
# One test program, started in a fixed environment: no display, no bus but the private one a test starts itself.
# GUI gives it a QApplication instead of a QCoreApplication; X11 a QApplication on an X server of its own
# (tests/support/TestXServer.h).
function(kiv_add_test name)
  cmake_parse_arguments(T "GUI;X11" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 120)
  endif()
  if(NOT T_LABELS)
    set(T_LABELS unit)
  endif()
  set(main kiv_test_main)
  if(T_X11)
    set(main kiv_x11_test_main)
  elseif(T_GUI)
    set(main kiv_gui_test_main)
  endif()
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE kiv_options kiv_test_support ${T_LIBS} ${main})
  target_precompile_headers(${name} REUSE_FROM kiv_test_main)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${T_TIMEOUT}
    LABELS "${T_LABELS}"
    ENVIRONMENT "LC_ALL=C.UTF-8;TZ=UTC;QT_QPA_PLATFORM=offscreen;DISPLAY=;DBUS_SESSION_BUS_ADDRESS=disabled:;DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent;XDG_RUNTIME_DIR=;ASAN_OPTIONS=detect_leaks=1;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/leaks.supp:print_suppressions=0")
endfunction()
