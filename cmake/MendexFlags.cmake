# Flags that every target of the project shares: the arithmetic contract, warnings, sanitizers.
add_library(mendex_flags INTERFACE)
target_compile_features(mendex_flags INTERFACE cxx_std_17)
target_compile_options(mendex_flags INTERFACE
  -ffp-contract=off      # the same bits on every machine: no fused multiply-add behind our back
  -fno-strict-aliasing   # elements are viewed through their base class inside one array
  -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2)
target_compile_definitions(mendex_flags INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(MENDEX_WARNINGS_AS_ERRORS)
  target_compile_options(mendex_flags INTERFACE -Werror)
endif()
if(MENDEX_SANITIZE)
  target_compile_options(mendex_flags INTERFACE
    -fsanitize=${MENDEX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_definitions(mendex_flags INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(mendex_flags INTERFACE -fsanitize=${MENDEX_SANITIZE})
endif()
if(MENDEX_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "The fuzz targets need clang: configure with the preset `fuzz`")
  endif()
  target_compile_options(mendex_flags INTERFACE
    -fsanitize=fuzzer-no-link "-fsanitize-coverage-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/coverage_ignore.txt")
endif()

# Whether a target's sources are compiled in batches. Names of one source are then seen by others, so that the builds that people
# work with do without.
function(mendex_unity target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${MENDEX_UNITY} UNITY_BUILD_BATCH_SIZE 12)
endfunction()

# A tree that was built can be moved: the program finds the library beside itself.
if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
endif()

# The compiler cache, where there is one. Paths below the source folder are hashed relative to it, so that two checkouts share
# their results; the sloppiness is what precompiled headers need.
find_program(MENDEX_CCACHE ccache)
if(MENDEX_CCACHE AND PROJECT_IS_TOP_LEVEL AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_SLOPPINESS=pch_defines,time_macros "${MENDEX_CCACHE}")
endif()
