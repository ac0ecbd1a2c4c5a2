# Qt's headers of this machine, and lists of what its libraries have: enough to compile and to link with, for macOS. See
# README.md.
file(READ ${CMAKE_OSX_SYSROOT}/qt/version Qt6_VERSION)
string(REPLACE "." ";" parts ${Qt6_VERSION})
list(GET parts 0 Qt6_VERSION_MAJOR)
list(GET parts 1 Qt6_VERSION_MINOR)
list(GET parts 2 Qt6_VERSION_PATCH)
set(Qt6Core_VERSION_MAJOR ${Qt6_VERSION_MAJOR})
set(Qt6Core_VERSION_MINOR ${Qt6_VERSION_MINOR})

foreach(module IN LISTS Qt6_FIND_COMPONENTS)
  if(NOT EXISTS ${CMAKE_OSX_SYSROOT}/qt/lib/Qt${module}.tbd)
    set(Qt6_FOUND FALSE)
    set(Qt6_NOT_FOUND_MESSAGE "A Mac is not asked for Qt6${module}.")
    return()
  endif()
  if(TARGET Qt6::${module})
    continue() # Asked for once more, by a folder further down.
  endif()
  add_library(Qt6::${module} SHARED IMPORTED)
  set_target_properties(Qt6::${module} PROPERTIES
    IMPORTED_LOCATION ${CMAKE_OSX_SYSROOT}/qt/lib/Qt${module}.tbd
    INTERFACE_INCLUDE_DIRECTORIES "${CMAKE_OSX_SYSROOT}/qt/include;${CMAKE_OSX_SYSROOT}/qt/include/Qt${module}"
    INTERFACE_COMPILE_DEFINITIONS QT_$<UPPER_CASE:${module}>_LIB)
endforeach()
foreach(pair IN ITEMS "Widgets;Gui" "Gui;Core" "Network;Core")
  list(GET pair 0 module)
  list(GET pair 1 base)
  if(TARGET Qt6::${module} AND TARGET Qt6::${base})
    set_property(TARGET Qt6::${module} PROPERTY INTERFACE_LINK_LIBRARIES Qt6::${base})
  endif()
endforeach()

if(NOT TARGET Qt6::moc)
  add_executable(Qt6::moc IMPORTED)
  set_property(TARGET Qt6::moc PROPERTY IMPORTED_LOCATION ${CMAKE_OSX_SYSROOT}/qt/libexec/moc)
endif()
