# The launcher in the root, in a clean copy of the checkout.
add_test(NAME launcher.clean_checkout COMMAND
  bash "${CMAKE_CURRENT_LIST_DIR}/clean_checkout.sh" "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/launcher")
set_tests_properties(launcher.clean_checkout PROPERTIES TIMEOUT 900)
