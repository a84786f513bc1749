# Installs the library, its public headers, the program, and what find_package and pkg-config need.
include(CMakePackageConfigHelpers)

set(mendex_header_dir "${CMAKE_INSTALL_INCLUDEDIR}/mendexlib")
set(mendex_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/mendexlib")

install(TARGETS mendexlib EXPORT mendexlib-targets
  FILE_SET HEADERS DESTINATION "${mendex_header_dir}"
  INCLUDES DESTINATION "${mendex_header_dir}")
install(EXPORT mendexlib-targets NAMESPACE mendex:: DESTINATION "${mendex_package_dir}")

configure_package_config_file(
  "${CMAKE_CURRENT_LIST_DIR}/mendexlib-config.cmake.in" "${PROJECT_BINARY_DIR}/mendexlib-config.cmake"
  INSTALL_DESTINATION "${mendex_package_dir}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  "${PROJECT_BINARY_DIR}/mendexlib-config-version.cmake" COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/mendexlib-config.cmake" "${PROJECT_BINARY_DIR}/mendexlib-config-version.cmake"
  DESTINATION "${mendex_package_dir}")

# The pkg-config file names the prefix relative to itself, so that an installed tree can be moved.
set(mendex_pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH mendex_prefix_from_pkgconfig
  "${CMAKE_INSTALL_PREFIX}/${mendex_pkgconfig_dir}" "${CMAKE_INSTALL_PREFIX}")
if(BUILD_SHARED_LIBS)
  set(mendex_pkgconfig_cflags "")
else()
  set(mendex_pkgconfig_cflags " -DMENDEX_STATIC")
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/mendexlib.pc.in" "${PROJECT_BINARY_DIR}/mendexlib.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/mendexlib.pc" DESTINATION "${mendex_pkgconfig_dir}")

if(TARGET mendex-cli)
  file(RELATIVE_PATH mendex_lib_from_bin
    "${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}" "${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}")
  set_target_properties(mendex-cli PROPERTIES INSTALL_RPATH "$ORIGIN/${mendex_lib_from_bin}")
  install(TARGETS mendex-cli)
  install(FILES "${PROJECT_SOURCE_DIR}/docs/mendex.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  install(FILES "${PROJECT_SOURCE_DIR}/apps/mendex/completion/mendex.bash"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME mendex)
endif()
