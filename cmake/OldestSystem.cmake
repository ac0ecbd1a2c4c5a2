# The oldest macOS that the bundle says it runs on must be one that this Qt runs on. A Qt that does not tell is believed.
if(QT_SUPPORTED_MIN_MACOS_VERSION VERSION_GREATER CMAKE_OSX_DEPLOYMENT_TARGET)
  message(FATAL_ERROR "This Qt runs on macOS ${QT_SUPPORTED_MIN_MACOS_VERSION} or newer: configure with "
    "-D CMAKE_OSX_DEPLOYMENT_TARGET=${QT_SUPPORTED_MIN_MACOS_VERSION}")
endif()
