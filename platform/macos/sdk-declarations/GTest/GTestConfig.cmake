# GoogleTest's headers of this machine, for compiling the tests. What its libraries have is known to symbols.py alone. See
# README.md.
foreach(library IN ITEMS gtest gmock)
  if(NOT TARGET GTest::${library})
    add_library(GTest::${library} INTERFACE IMPORTED)
    target_include_directories(GTest::${library} INTERFACE ${CMAKE_OSX_SYSROOT}/usr/local/include)
  endif()
endforeach()
