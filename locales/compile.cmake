# Compiles one locale object: -DMKLCO= -DOUTPUT= -DLOSSES= -DARGUMENTS=(list). What the object cannot hold
# is expected here and goes to the list of losses; it is printed only when nothing was written.
execute_process(COMMAND ${MKLCO} --output=${OUTPUT} --losses=${LOSSES} ${ARGUMENTS}
                RESULT_VARIABLE status ERROR_VARIABLE messages)
if(NOT status MATCHES "^[01]$")
  message(FATAL_ERROR "${messages}")
endif()
