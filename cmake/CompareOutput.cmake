# Runs GENERATOR and fails when its output differs from the file REFERENCE.
execute_process(COMMAND ${GENERATOR} OUTPUT_VARIABLE generated RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${GENERATOR} failed (${status})")
endif()
file(READ ${REFERENCE} committed)
if(NOT generated STREQUAL committed)
    message(FATAL_ERROR "${REFERENCE} is out of date: run `make docs` and commit the result")
endif()
