# Settings that every target of the tree shares: language, warnings, caches, output folders.

include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

set(NCX_PROGRAMS ncx ncx_cli ncx_cli_j1939 ncx_cli_can ncx_cli_energybus)
set(NCX_INSTALL_PROGRAMDIR "${CMAKE_INSTALL_LIBEXECDIR}/ncx_cli")

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Sql Xml)
find_package(SQLite3 REQUIRED)

find_program(NCX_CCACHE ccache)
if(NCX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # Precompiled headers are only cached when the compiler's own time stamps may differ. They are hundreds of megabytes, which
    # are summed up once (ncx_sum_header) and not anew for each file.
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env CCACHE_PCH_EXTSUM=1
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${NCX_CCACHE}")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-fpch-preprocess)
    endif()
endif()

# Thirty programs are linked with the same libraries; this linker takes a tenth of the time.
find_program(NCX_MOLD mold)
if(NCX_MOLD)
    add_link_options(-fuse-ld=mold)
endif()

if(NCX_SANITIZE)
    add_compile_options(-fsanitize=${NCX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${NCX_SANITIZE})
endif()

# Warnings of the program's own code; the presets of developers make them errors, a packager's compiler may know more of them.
add_library(ncx_options INTERFACE)
target_compile_options(ncx_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion)
target_compile_definitions(ncx_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)

if(NCX_UNITY)
    # A local variable may have a name that another file of its folder has for something. Nor does the compiler look for memory
    # to give back before it has taken half a gigabyte.
    target_compile_options(ncx_options INTERFACE -Wno-shadow
        $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=500000>)
endif()

# ncx_sum_header(TARGET): the precompiled header of a target has its sum in a file beside it, where the cache looks for it.
function(ncx_sum_header target)
    if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES CCACHE_PCH_EXTSUM)
        set_target_properties(${target} PROPERTIES CXX_COMPILER_LAUNCHER
            "sh;${PROJECT_SOURCE_DIR}/cmake/sum_header;${CMAKE_CXX_COMPILER_LAUNCHER}")
    endif()
endfunction()

# The headers that nearly every file reads, compiled once for the whole tree.
file(WRITE "${CMAKE_BINARY_DIR}/ncx_pch.cpp.in" "// Holds the precompiled header that the other targets reuse.\n")
configure_file("${CMAKE_BINARY_DIR}/ncx_pch.cpp.in" "${CMAKE_BINARY_DIR}/ncx_pch.cpp" COPYONLY)
add_library(ncx_pch STATIC "${CMAKE_BINARY_DIR}/ncx_pch.cpp")
target_link_libraries(ncx_pch PRIVATE ncx_options Qt6::Core Qt6::Sql)
target_precompile_headers(ncx_pch PRIVATE <QtCore/QtCore> <QtSql/QSqlDatabase> <QtSql/QSqlError> <QtSql/QSqlQuery>
    <array> <atomic> <functional> <memory> <optional> <span> <vector>)
ncx_sum_header(ncx_pch)

# ncx_floor(NAME SOURCES ... APART ... LINKS ...): one floor of the house as a static library. Only floors have classes that
# moc reads: to look for them in thirty programs and compile what is not there takes a minute of processor time.
#
# With NCX_UNITY each room, a folder of the floor, is compiled as one, but for those of APART: their files have the same names
# in them, each for itself.
function(ncx_floor name)
    cmake_parse_arguments(ARG "" "" "SOURCES;APART;LINKS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON UNITY_BUILD ${NCX_UNITY} UNITY_BUILD_MODE GROUP)
    foreach(source ${ARG_SOURCES})
        get_filename_component(room "${source}" DIRECTORY)
        if(source MATCHES "[.]cpp$" AND NOT room IN_LIST ARG_APART AND NOT source IN_LIST ARG_APART)
            set_source_files_properties(${source} PROPERTIES UNITY_GROUP "floor/${room}")
        endif()
    endforeach()
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/platform")
    target_link_libraries(${name} PUBLIC Qt6::Core ${ARG_LINKS} PRIVATE ncx_options Qt6::Sql)
    target_precompile_headers(${name} REUSE_FROM ncx_pch)
endfunction()
