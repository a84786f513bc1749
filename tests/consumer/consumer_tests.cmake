# Installs the library into the build tree and uses it there as strangers would: through find_package and through pkg-config.
set(consumer_dir "${PROJECT_BINARY_DIR}/consumer")

add_test(NAME consumer.install COMMAND
  "${CMAKE_COMMAND}" --install "${PROJECT_BINARY_DIR}" --prefix "${consumer_dir}/prefix")
set_tests_properties(consumer.install PROPERTIES FIXTURES_SETUP installed_tree)

add_test(NAME consumer.find_package COMMAND
  "${CMAKE_CTEST_COMMAND}" --build-and-test "${CMAKE_CURRENT_LIST_DIR}" "${consumer_dir}/find_package"
  --build-generator "${CMAKE_GENERATOR}"
  --build-options "-DCMAKE_PREFIX_PATH=${consumer_dir}/prefix" "-DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}"
  --test-command "${consumer_dir}/find_package/consumer")

add_test(NAME consumer.pkg_config COMMAND
  sh "${CMAKE_CURRENT_LIST_DIR}/pkg_config.sh" "${CMAKE_CXX_COMPILER}"
  "${consumer_dir}/prefix/${CMAKE_INSTALL_LIBDIR}" "${consumer_dir}/with_pkg_config")

if(BUILD_SHARED_LIBS)
  add_test(NAME consumer.exports COMMAND
    bash "${CMAKE_CURRENT_LIST_DIR}/exports.sh" "${PROJECT_SOURCE_DIR}/src" "$<TARGET_FILE:mendexlib>"
    "${consumer_dir}/prefix/${mendex_header_dir}" $<TARGET_OBJECTS:mendexlib> -- $<TARGET_OBJECTS:mendex_tests>
    COMMAND_EXPAND_LISTS)
  set_tests_properties(consumer.exports PROPERTIES FIXTURES_REQUIRED installed_tree TIMEOUT 60)
endif()

set_tests_properties(consumer.find_package consumer.pkg_config PROPERTIES FIXTURES_REQUIRED installed_tree TIMEOUT 120)
