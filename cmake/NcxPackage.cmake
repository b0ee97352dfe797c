# What is installed beside the programs, and the package made of it.

include(GNUInstallDirs)

foreach(program IN ITEMS ncx_cli ncx_cli_j1939 ncx_cli_can ncx_cli_energybus)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/man/ncx_cli.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
        RENAME ${program}.1)
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}" PATTERN man EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}" PATTERN expected EXCLUDE)

install(FILES "${PROJECT_SOURCE_DIR}/cmake/NcxGenerate.cmake" DESTINATION "${CMAKE_INSTALL_DATADIR}/cmake/ncx_cli")

set(CPACK_PACKAGE_NAME ncx-cli)
set(CPACK_PACKAGE_VENDOR "${PROJECT_NAME}")
set(CPACK_PACKAGE_CONTACT "The ${PROJECT_NAME} team <ncx-cli@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION "Describes a CAN device (CANopen, J1939, raw CAN) in a project file, checks the model
and writes the C sources of its protocol stack, EDS, XDD, DBC, HTML and text files from it.")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The database driver is a plugin, which no scan of the programs finds.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt6sql6-sqlite)
include(CPack)
