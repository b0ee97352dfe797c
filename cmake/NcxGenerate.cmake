# ncx_generate(TARGET <target> PROJECT <file> OUTPUTS <name>... [IMPORTS <file>...] [STACKPATH <folder>] [DBMOD <file>]
#              [DEPENDS <file>...] [PROGRAM <program>] [FOLDER <folder>])
#
# Generates the C sources of a device and adds them to a target: `OUTPUTS` names the generated files that the target is
# built from or includes, for example gen_objdict.c gen_define.h. `ncx generate` runs again when the project, an imported
# file, the modifier file, one of `DEPENDS` (a template of the stack, say) or the program itself changes; a file whose text
# stays the same keeps its time, so that nothing is compiled again for it.
#
# All that the run writes goes into `FOLDER` (<target>_can in the build folder of the calling CMakeLists.txt unless told),
# an include folder of the target; nothing is written beside the project. A model that does not pass its check fails the
# build, with its first errors on the console.
#
# `PROGRAM` is a target, a name to look for in the PATH, or a path: ncx unless told.
#
# Call it in the CMakeLists.txt that makes the target.
set(NCX_GENERATE_SCRIPT "${CMAKE_CURRENT_LIST_DIR}/NcxRunGeneration.cmake")

# The target, or the path, of the program that a caller named.
function(ncx_find_program name result)
    if(TARGET ncx_cli::${name})
        set(name ncx_cli::${name})
    endif()
    if(TARGET ${name})
        set(${result} "$<TARGET_FILE:${name}>" PARENT_SCOPE)
        return()
    endif()
    find_program(NCX_PROGRAM_${name} "${name}")
    if(NOT NCX_PROGRAM_${name})
        message(FATAL_ERROR "ncx_generate: there is no program ${name}")
    endif()
    set(${result} "${NCX_PROGRAM_${name}}" PARENT_SCOPE)
endfunction()

function(ncx_generate)
    cmake_parse_arguments(PARSE_ARGV 0 ARG "" "TARGET;PROJECT;STACKPATH;DBMOD;PROGRAM;FOLDER" "OUTPUTS;IMPORTS;DEPENDS")
    foreach(needed IN ITEMS TARGET PROJECT OUTPUTS)
        if(NOT ARG_${needed})
            message(FATAL_ERROR "ncx_generate: ${needed} is missing")
        endif()
    endforeach()
    if(ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "ncx_generate: unknown arguments: ${ARG_UNPARSED_ARGUMENTS}")
    endif()
    get_target_property(home ${ARG_TARGET} SOURCE_DIR)
    if(NOT home STREQUAL CMAKE_CURRENT_SOURCE_DIR)
        message(FATAL_ERROR "ncx_generate: call it in ${home}, where the target ${ARG_TARGET} is made")
    endif()
    if(NOT ARG_PROGRAM)
        set(ARG_PROGRAM ncx)
    endif()
    ncx_find_program("${ARG_PROGRAM}" program)
    if(NOT ARG_FOLDER)
        set(ARG_FOLDER "${ARG_TARGET}_can")
    endif()
    cmake_path(ABSOLUTE_PATH ARG_FOLDER BASE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}" NORMALIZE)
    foreach(path IN ITEMS ARG_PROJECT ARG_STACKPATH ARG_DBMOD)
        if(${path})
            cmake_path(ABSOLUTE_PATH ${path} NORMALIZE)
        endif()
    endforeach()

    # A run looks beside its project for these: the one says to leave stdlib.h out, the other has the user's own section.
    cmake_path(GET ARG_PROJECT PARENT_PATH project_folder)
    set(user_section "${project_folder}/gen_define.h")
    file(GLOB read CONFIGURE_DEPENDS "${project_folder}/no_stdlib_include.txt" "${user_section}")
    set(inputs "${ARG_PROJECT}" ${read} ${ARG_DEPENDS})
    set(arguments)
    if("${user_section}" IN_LIST read)
        list(APPEND arguments "--user-section=${user_section}")
    endif()
    foreach(import IN LISTS ARG_IMPORTS)
        cmake_path(ABSOLUTE_PATH import NORMALIZE)
        list(APPEND arguments "--import=${import}")
        list(APPEND inputs "${import}")
    endforeach()
    if(ARG_STACKPATH)
        list(APPEND arguments "--stack=${ARG_STACKPATH}")
    endif()
    if(ARG_DBMOD)
        list(APPEND arguments "--modifier=${ARG_DBMOD}")
        list(APPEND inputs "${ARG_DBMOD}")
    endif()

    # The outputs keep their times when their text stays the same, so a file of its own tells when they were last looked at.
    cmake_path(GET ARG_PROJECT FILENAME name)
    set(stamp "${ARG_FOLDER}/.generated")
    set(run "${CMAKE_COMMAND}" "-DPROGRAM=${program}" "-DFOLDER=${ARG_FOLDER}" "-DPROJECT=${ARG_PROJECT}")
    add_custom_command(OUTPUT "${stamp}"
        COMMAND ${run} "-DARGUMENTS=${arguments}" "-DOUTPUTS=${ARG_OUTPUTS}" "-DSTAMP=${stamp}"
            -P "${NCX_GENERATE_SCRIPT}"
        DEPENDS ${inputs} "${program}" "${NCX_GENERATE_SCRIPT}"
        COMMENT "Generating the CAN sources of ${name}"
        VERBATIM)
    foreach(output IN LISTS ARG_OUTPUTS)
        # Runs the program only if somebody has removed the file.
        add_custom_command(OUTPUT "${ARG_FOLDER}/${output}"
            COMMAND ${run} "-DARGUMENTS=${arguments}" "-DOUTPUTS=${ARG_OUTPUTS}" "-DMISSING=${output}"
                -P "${NCX_GENERATE_SCRIPT}"
            DEPENDS "${stamp}"
            COMMENT "Looking whether ${output} has changed"
            VERBATIM)
        target_sources(${ARG_TARGET} PRIVATE "${ARG_FOLDER}/${output}")
    endforeach()
    target_include_directories(${ARG_TARGET} PRIVATE "${ARG_FOLDER}")
endfunction()
