# ncx_generate(TARGET <target> PROJECT <file> OUTPUTS <name>... [IMPORTS <file>...] [STACKPATH <folder>]
#              [PROGRAM <program>] [FOLDER <folder>])
#
# Generates the C sources of a device and adds them to a target: `OUTPUTS` names the generated files that the target is
# built from or includes, for example gen_objdict.c gen_define.h. They are made anew when the project or an imported file
# changes. The generation works on a copy in `FOLDER` (below the build folder unless told), so that nothing is written
# beside the project. A model that does not pass its check fails the build, with its messages on the console.
#
# `PROGRAM` is ncx_cli, or another of the programs; where it is not found beside this file's own build it is looked for in
# the PATH.
function(ncx_generate)
    cmake_parse_arguments(ARG "" "TARGET;PROJECT;STACKPATH;PROGRAM;FOLDER" "OUTPUTS;IMPORTS" ${ARGN})
    foreach(needed IN ITEMS TARGET PROJECT OUTPUTS)
        if(NOT ARG_${needed})
            message(FATAL_ERROR "ncx_generate: ${needed} is missing")
        endif()
    endforeach()
    if(NOT ARG_PROGRAM)
        set(ARG_PROGRAM ncx_cli)
    endif()
    if(NOT TARGET ${ARG_PROGRAM})
        find_program(NCX_PROGRAM_${ARG_PROGRAM} ${ARG_PROGRAM} REQUIRED)
        set(ARG_PROGRAM "${NCX_PROGRAM_${ARG_PROGRAM}}")
    endif()
    if(NOT ARG_FOLDER)
        set(ARG_FOLDER "${CMAKE_CURRENT_BINARY_DIR}/${ARG_TARGET}_can")
    endif()
    cmake_path(ABSOLUTE_PATH ARG_PROJECT NORMALIZE)
    cmake_path(GET ARG_PROJECT FILENAME project_name)

    set(options -project "${ARG_FOLDER}/${project_name}")
    set(imports)
    foreach(import IN LISTS ARG_IMPORTS)
        cmake_path(ABSOLUTE_PATH import NORMALIZE)
        list(APPEND imports "${import}")
        list(APPEND options -import "${import}")
    endforeach()
    if(ARG_STACKPATH)
        list(APPEND options -stackpath "${ARG_STACKPATH}")
    endif()
    list(TRANSFORM ARG_OUTPUTS PREPEND "${ARG_FOLDER}/" OUTPUT_VARIABLE outputs)

    file(MAKE_DIRECTORY "${ARG_FOLDER}")
    add_custom_command(OUTPUT ${outputs}
        COMMAND "${CMAKE_COMMAND}" -E copy "${ARG_PROJECT}" "${ARG_FOLDER}/${project_name}"
        COMMAND ${ARG_PROGRAM} ${options}
        COMMAND "${CMAKE_COMMAND}" -E touch_nocreate ${outputs}
        DEPENDS "${ARG_PROJECT}" ${imports}
        COMMENT "Generating the CAN sources of ${project_name}"
        VERBATIM)
    target_sources(${ARG_TARGET} PRIVATE ${outputs})
    target_include_directories(${ARG_TARGET} PRIVATE "${ARG_FOLDER}")
endfunction()
