# One run of ncx_generate, as a script: generates in FOLDER from a copy of COPIED, of which PROJECT is opened, with the
# further ARGUMENTS, and sees that the OUTPUTS are there.
cmake_minimum_required(VERSION 3.20)

# What an earlier run wrote must not pass for an output of this one.
list(TRANSFORM OUTPUTS PREPEND "${FOLDER}/" OUTPUT_VARIABLE outputs)
file(REMOVE ${outputs})
file(MAKE_DIRECTORY "${FOLDER}")
# Not file(COPY), which takes two versions of the same second for one.
execute_process(COMMAND "${CMAKE_COMMAND}" -E copy ${COPIED} "${FOLDER}" RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${COPIED} cannot be copied to ${FOLDER}.")
endif()

# Working copies stay in the build folder: the user of a pipeline may have no home.
execute_process(COMMAND "${CMAKE_COMMAND}" -E env "XDG_DATA_HOME=${FOLDER}/working_copy"
        "${PROGRAM}" -project "${FOLDER}/${PROJECT}" ${ARGUMENTS}
    WORKING_DIRECTORY "${FOLDER}" RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "The generation of ${PROJECT} ended with ${result}.")
endif()
foreach(output IN LISTS OUTPUTS)
    if(NOT EXISTS "${FOLDER}/${output}")
        message(FATAL_ERROR "The generation of ${PROJECT} writes no ${output}: take it out of OUTPUTS.")
    endif()
endforeach()
