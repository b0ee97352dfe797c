# What is installed beside the programs, and the Debian package made of it.

include(CMakePackageConfigHelpers)

set(package_name ncx-cli)
set(doc_folder "${CMAKE_INSTALL_DATAROOTDIR}/doc/${package_name}")
set(module_folder "${CMAKE_INSTALL_DATAROOTDIR}/cmake/${PROJECT_NAME}")

# The programs look for template data in their own folder, so they live in one, and are called through links.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/stack/data" DESTINATION "${NCX_INSTALL_PROGRAMDIR}")
file(RELATIVE_PATH program_folder "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBEXECDIR}/ncx_cli")
foreach(program IN LISTS NCX_PROGRAMS)
    file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/package/bin")
    file(CREATE_LINK "${program_folder}/${program}" "${PROJECT_BINARY_DIR}/package/bin/${program}" SYMBOLIC)
    install(FILES "${PROJECT_BINARY_DIR}/package/bin/${program}" DESTINATION "${CMAKE_INSTALL_BINDIR}")
endforeach()

# ncx_zip(TEXT NAME): a text as the distribution wants manual pages and change logs, in package/NAME.gz. Without the name and
# time of the text, so that a package can be built again byte for byte.
find_program(NCX_GZIP gzip REQUIRED)
function(ncx_zip text name)
    execute_process(COMMAND "${NCX_GZIP}" -9nc INPUT_FILE "${text}"
        OUTPUT_FILE "${PROJECT_BINARY_DIR}/package/${name}.gz" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

configure_file("${PROJECT_SOURCE_DIR}/docs/man/ncx_cli.1" "${PROJECT_BINARY_DIR}/package/ncx_cli.1" @ONLY)
ncx_zip("${PROJECT_BINARY_DIR}/package/ncx_cli.1" ncx_cli.1)
set(batch_programs ${NCX_PROGRAMS})
list(REMOVE_ITEM batch_programs ncx)
foreach(program IN LISTS batch_programs)
    install(FILES "${PROJECT_BINARY_DIR}/package/ncx_cli.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
        RENAME ${program}.1.gz)
endforeach()
# Written by ncx itself after it is linked (ncx/CMakeLists.txt).
install(FILES "${PROJECT_BINARY_DIR}/package/ncx.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
install(FILES "${PROJECT_BINARY_DIR}/package/ncx.bash"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions" RENAME ncx)

install(FILES "${PROJECT_SOURCE_DIR}/README.md" DESTINATION "${doc_folder}")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${doc_folder}" RENAME copyright)
if(EXISTS "${PROJECT_SOURCE_DIR}/CHANGELOG.md")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/CHANGELOG.md")
    ncx_zip("${PROJECT_SOURCE_DIR}/CHANGELOG.md" changelog)
    install(FILES "${PROJECT_BINARY_DIR}/package/changelog.gz" DESTINATION "${doc_folder}")
endif()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${doc_folder}" PATTERN man EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${doc_folder}" PATTERN expected EXCLUDE)
# The example of a build compiles against a stand-in of the protocol stack.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/tests/stack/include" DESTINATION "${doc_folder}/examples/cmake_build/stack")
install(FILES "${PROJECT_SOURCE_DIR}/tests/stack/stack.c" "${PROJECT_SOURCE_DIR}/tests/stack/stack.h"
    DESTINATION "${doc_folder}/examples/cmake_build/stack")
# The profile databases are built in; these are for those who want to look at them or to bring folders of their own.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/codb" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/${PROJECT_NAME}"
    FILES_MATCHING PATTERN *.codb)

# find_package(ncx_cli) for those who generate in a build of their own: from the installed place, and from this build.
set(config_programs "${CMAKE_INSTALL_BINDIR}")
set(config_module "${module_folder}/NcxGenerate.cmake")
set(config_stack "${doc_folder}/examples/cmake_build/stack")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/ncx_cli-config.cmake.in"
    "${PROJECT_BINARY_DIR}/package/ncx_cli-config.cmake" INSTALL_DESTINATION "${module_folder}"
    PATH_VARS config_programs config_module config_stack NO_CHECK_REQUIRED_COMPONENTS_MACRO)
set(config_programs "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
set(config_module "${PROJECT_SOURCE_DIR}/cmake/NcxGenerate.cmake")
set(config_stack "${PROJECT_SOURCE_DIR}/tests/stack")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/ncx_cli-config.cmake.in"
    "${PROJECT_BINARY_DIR}/ncx_cli-config.cmake" INSTALL_DESTINATION "${PROJECT_BINARY_DIR}"
    PATH_VARS config_programs config_module config_stack NO_CHECK_REQUIRED_COMPONENTS_MACRO)
foreach(folder IN ITEMS "${PROJECT_BINARY_DIR}" "${PROJECT_BINARY_DIR}/package")
    write_basic_package_version_file("${folder}/ncx_cli-config-version.cmake" COMPATIBILITY SameMajorVersion
        ARCH_INDEPENDENT)
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/cmake/NcxGenerate.cmake" "${PROJECT_SOURCE_DIR}/cmake/NcxRunGeneration.cmake"
    "${PROJECT_BINARY_DIR}/package/ncx_cli-config.cmake" "${PROJECT_BINARY_DIR}/package/ncx_cli-config-version.cmake"
    DESTINATION "${module_folder}")

set(CPACK_PACKAGE_NAME "${package_name}")
set(CPACK_PACKAGE_VENDOR "${PROJECT_NAME}")
set(CPACK_PACKAGE_CONTACT "The ${PROJECT_NAME} team <ncx-cli@norvane.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Describes a CAN device (CANopen, J1939, raw CAN) in a project file, checks the
model and writes the C sources of its protocol stack, EDS, XDD, DBC, HTML and
text files from it. Serves the same to an assistant with --mcp.")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The database driver is a plugin, which no scan of the programs finds.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt6sql6-sqlite)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS cmake)
include(CPack)
