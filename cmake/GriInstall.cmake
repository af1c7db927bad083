# What is installed: the header, the library, and what tells pkg-config and CMake about them.
# Everything belongs to one component, so that it can be installed without the hosts:
#   cmake --install build/release --component gri_rdk_cdll
include(CMakePackageConfigHelpers)

install(TARGETS gri_rdk_cdll EXPORT gri_rdk_cdll-targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT gri_rdk_cdll
    NAMELINK_COMPONENT gri_rdk_cdll)
install(FILES $<TARGET_FILE_DIR:gri_rdk_cdll>/gri_rdk_cdll.so
  DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT gri_rdk_cdll)
install(FILES "${PROJECT_SOURCE_DIR}/include/gri_rdk_cdll.h"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT gri_rdk_cdll)

# Both find their files from where they lie themselves, so the tree may be installed anywhere.
set(GRI_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH GRI_PKGCONFIG_TO_PREFIX
  "/prefix/${GRI_PKGCONFIG_DIR}" "/prefix")
configure_file("${PROJECT_SOURCE_DIR}/cmake/gri_rdk_cdll.pc.in"
  "${PROJECT_BINARY_DIR}/gri_rdk_cdll.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/gri_rdk_cdll.pc"
  DESTINATION "${GRI_PKGCONFIG_DIR}" COMPONENT gri_rdk_cdll)

set(GRI_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/gri_rdk_cdll")
install(EXPORT gri_rdk_cdll-targets NAMESPACE gri_rdk_cdll::
  DESTINATION "${GRI_CMAKE_DIR}" COMPONENT gri_rdk_cdll)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/gri_rdk_cdll-config.cmake.in"
  "${PROJECT_BINARY_DIR}/gri_rdk_cdll-config.cmake" INSTALL_DESTINATION "${GRI_CMAKE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/gri_rdk_cdll-config-version.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/gri_rdk_cdll-config.cmake"
  "${PROJECT_BINARY_DIR}/gri_rdk_cdll-config-version.cmake"
  DESTINATION "${GRI_CMAKE_DIR}" COMPONENT gri_rdk_cdll)
