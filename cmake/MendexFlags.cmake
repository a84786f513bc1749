# Flags that every target of the project shares: the arithmetic contract, warnings, sanitizers.
add_library(mendex_flags INTERFACE)
target_compile_features(mendex_flags INTERFACE cxx_std_17)
target_compile_options(mendex_flags INTERFACE
  -ffp-contract=off      # the same bits on every machine: no fused multiply-add behind our back
  -fno-strict-aliasing   # elements are viewed through their base class inside one array
  -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2)
if(MENDEX_WARNINGS_AS_ERRORS)
  target_compile_options(mendex_flags INTERFACE -Werror)
endif()
if(MENDEX_SANITIZE)
  target_compile_options(mendex_flags INTERFACE -fsanitize=${MENDEX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(mendex_flags INTERFACE -fsanitize=${MENDEX_SANITIZE})
endif()
find_program(MENDEX_CCACHE ccache)
if(MENDEX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${MENDEX_CCACHE}")
endif()
