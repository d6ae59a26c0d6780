# One Debian package: tool, page, manual page, completions, headers and static libraries. Included last,
# since it describes what all the rules before it install.
# The time of the commit, where SOURCE_DATE_EPOCH states it.
string(TIMESTAMP VEK0_RELEASE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(package_documents ${CMAKE_CURRENT_BINARY_DIR}/package)
configure_file(packaging/changelog.Debian.in ${package_documents}/changelog.Debian @ONLY)
configure_file(CHANGELOG.md ${package_documents}/changelog COPYONLY)
install(FILES ${package_documents}/changelog ${package_documents}/changelog.Debian
              packaging/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vek0)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vek0)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "vek0core maintainers <maintainers@vek0core.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "drafting engine for DXF drawings: command-line tool and C++ library")
set(CPACK_PACKAGE_DESCRIPTION
"The tool vek0 describes, checks, compares, draws, edits, hatches, merges and
converts DXF drawings. Edits leave the rest of a file as it was, byte for byte.
The library vek0core holds drawings in memory for programs in C++20.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-osifont, fonts-dejavu-core")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/packaging/compress.cmake)
include(CPack)
