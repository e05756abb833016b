# The config package: find_package(KxSearchPath) gives KxSearchPath::search_path (the library, to link), and what it
# stands on: ::path_utilities, ::interfaces (headers alone, for those who implement or call) and ::foundation.

include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/KxSearchPath)
configure_package_config_file(cmake/KxSearchPathConfig.cmake.in cmake/KxSearchPathConfig.cmake
  INSTALL_DESTINATION ${packageDir})
# While the major version is 0, every minor version may break what was before.
write_basic_package_version_file(cmake/KxSearchPathConfigVersion.cmake COMPATIBILITY SameMinorVersion)

install(FILES
    ${PROJECT_BINARY_DIR}/cmake/KxSearchPathConfig.cmake
    ${PROJECT_BINARY_DIR}/cmake/KxSearchPathConfigVersion.cmake
  DESTINATION ${packageDir} COMPONENT Development)
install(EXPORT KxSearchPathTargets NAMESPACE KxSearchPath:: DESTINATION ${packageDir} COMPONENT Development)
export(EXPORT KxSearchPathTargets NAMESPACE KxSearchPath:: FILE cmake/KxSearchPathTargets.cmake)
