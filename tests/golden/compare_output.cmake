# Runs a program and compares its standard output with a stored file, byte
# for byte.  On a difference the new output is kept beside the build for
# review (diff it against the stored file; replace the file only when the
# change is intended).
execute_process(COMMAND ${PROGRAM} ${ARGS} OUTPUT_FILE ${ACTUAL} RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} failed with ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${EXPECTED} ${ACTUAL} RESULT_VARIABLE differ)
if(differ)
  message(FATAL_ERROR "output differs from ${EXPECTED}; new output in ${ACTUAL}")
endif()
