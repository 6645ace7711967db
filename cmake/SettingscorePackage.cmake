# The CMake package: find_package(settingscore CONFIG REQUIRED) from an install prefix gives
# the targets settingscore::settingscore and settingscore::tvplatform.
include(CMakePackageConfigHelpers)

install(EXPORT settingscoreTargets
        NAMESPACE settingscore::
        DESTINATION ${SETTINGSCORE_INSTALL_CMAKEDIR})

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/settingscoreConfig.cmake.in
    ${PROJECT_BINARY_DIR}/settingscoreConfig.cmake
    INSTALL_DESTINATION ${SETTINGSCORE_INSTALL_CMAKEDIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/settingscoreConfigVersion.cmake
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/settingscoreConfig.cmake
              ${PROJECT_BINARY_DIR}/settingscoreConfigVersion.cmake
        DESTINATION ${SETTINGSCORE_INSTALL_CMAKEDIR})
