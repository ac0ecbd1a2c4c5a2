# The application bundle, in the build tree and installed, and what starts it at each login. Nothing is copied after the
# build: what is installed is signed, and may not change any more.

set(KIV_APPLICATION_DIR "Application Support/Kivune" CACHE STRING "Folder of the bundle below the install prefix")
set(bundle "${KIV_APPLICATION_DIR}/kivmenua.app")
set(KIV_INSTALLED_BUNDLE "${CMAKE_INSTALL_PREFIX}/${bundle}")

configure_file(Info.plist.in ${CMAKE_CURRENT_BINARY_DIR}/Info.plist @ONLY)
set_target_properties(kivmenua PROPERTIES
  MACOSX_BUNDLE ON
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)
# Those of the status item are drawn anew for a menu bar that colours them itself.
list(TRANSFORM images REPLACE "^status" "macos/status")
list(TRANSFORM images PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
target_sources(kivmenua PRIVATE ${images})
set_source_files_properties(${images} TARGET_DIRECTORY kivmenua PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
install(TARGETS kivmenua BUNDLE DESTINATION "${KIV_APPLICATION_DIR}")

# The agent looks for it beside itself.
set(programs kivmenua.app/Contents/MacOS)
set_target_properties(kivfetch PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${programs})
install(TARGETS kivfetch RUNTIME DESTINATION "${KIV_APPLICATION_DIR}/${programs}")

# One agent for each graphical session.
configure_file(macos/com.tamborel.kivmenua.plist.in ${CMAKE_CURRENT_BINARY_DIR}/com.tamborel.kivmenua.plist @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/com.tamborel.kivmenua.plist DESTINATION LaunchAgents)

# Qt's libraries go into the bundle with it, where this Qt can do that (6.5).
if(COMMAND qt_generate_deploy_script)
  qt_generate_deploy_script(TARGET kivmenua OUTPUT_SCRIPT deploy CONTENT "
    qt_deploy_runtime_dependencies(EXECUTABLE \"${bundle}\"
      ADDITIONAL_EXECUTABLES \"${KIV_APPLICATION_DIR}/${programs}/kivfetch\")")
  install(SCRIPT ${deploy})
endif()
