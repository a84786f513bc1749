# mendex_public_headers(FILE...): headers of the calling folder that hosts may include. They are installed with their folders
# below include/mendexlib; a header that is not named here stays private to the library.
function(mendex_public_headers)
  target_sources(mendexlib PUBLIC
    FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/src" FILES ${ARGN})
endfunction()
