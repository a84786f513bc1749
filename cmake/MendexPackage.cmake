# What `cpack -G DEB` makes of a release build: one package with the library, its headers, the program and its pages.
set(CPACK_GENERATOR "DEB")
set(CPACK_PACKAGE_NAME "mendex")
set(CPACK_PACKAGE_VENDOR "mendex")
set(CPACK_PACKAGE_CONTACT "the maintainers of mendex <mendex@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "repair of triangle meshes: a program and a C++ library")
set(CPACK_PACKAGE_DESCRIPTION "mendex tells what is wrong with a triangle mesh, such as an STL file, and mends it: it merges nodes,
joins boundaries, closes holes, deletes what should not be there and turns triangles over, with undo.
The library libmendexlib gives C++ programs the same.")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_DEBIAN_FILE_NAME "DEB-DEFAULT")
set(CPACK_DEBIAN_PACKAGE_SECTION "math")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "bash-completion")
# The library that the program needs is in the package itself.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/src")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
include(CPack)
