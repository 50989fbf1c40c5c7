# Compiles one object: -DCOMPILER= -DARGUMENTS=(list). What the object cannot hold is expected here; it is
# printed only when nothing was written.
execute_process(COMMAND ${COMPILER} ${ARGUMENTS} RESULT_VARIABLE status ERROR_VARIABLE messages)
if(NOT status MATCHES "^[01]$")
  message(FATAL_ERROR "${messages}")
endif()
