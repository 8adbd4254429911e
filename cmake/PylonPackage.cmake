# Install rules, the CMake package, the pkg-config file and the Debian packages.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/PylonSDKUtil)

install(TARGETS pylonsdk-util EXPORT PylonSDKUtilTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT PylonSDKUtilTargets NAMESPACE PylonSDK:: DESTINATION ${package_dir}
  COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/PylonSDKUtilConfig.cmake.in
  ${PROJECT_BINARY_DIR}/PylonSDKUtilConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/PylonSDKUtilConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/PylonSDKUtilConfig.cmake
  ${PROJECT_BINARY_DIR}/PylonSDKUtilConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# Relative to the file itself, so that an installed tree can be moved.
file(RELATIVE_PATH pc_to_prefix
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_CURRENT_LIST_DIR}/pylonsdk-util.pc.in
  ${PROJECT_BINARY_DIR}/pylonsdk-util.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pylonsdk-util.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)

set(CPACK_PACKAGE_VENDOR "PylonSDK")
set(CPACK_PACKAGE_CONTACT "PylonSDK developers <pylonsdk@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(PYLON_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()

if(WIN32)
  # One archive that runs from any folder.
  set(CPACK_GENERATOR ZIP)
  if(PYLON_WINDOWS_SYSROOT)
    find_file(PYLON_CRYPTO_DLL libcrypto-3-x64.dll REQUIRED
      PATHS ${PYLON_WINDOWS_SYSROOT}/bin NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    set(dlls ${PYLON_CRYPTO_DLL})
    foreach(name libstdc++-6 libgcc_s_seh-1 libwinpthread-1)
      find_file(PYLON_DLL_${name} ${name}.dll REQUIRED
        PATHS ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
      list(APPEND dlls ${PYLON_DLL_${name}})
    endforeach()
    install(FILES ${dlls} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
    install(IMPORTED_RUNTIME_ARTIFACTS Qt6::Core Qt6::Network Qt6::Xml
      RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  endif()
  set(CPACK_PACKAGE_FILE_NAME "pylonsdk-util-${PROJECT_VERSION}-win64")
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libpylonsdk-util${PROJECT_VERSION_MAJOR})
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpylonsdk-util-dev)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME pylonsdk-util-tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION video)
  set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The shared library.")
  set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Headers, CMake package and pkg-config file for programs that use the library.")
  set(CPACK_COMPONENT_TOOLS_DESCRIPTION "pylon-inspect, which shows recordings of network frames.")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
  set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
  set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qt6-base-dev (>= 6.4), libssl-dev (>= 3)")
endif()
include(CPack)
