# Renders PAGE (a scdoc source) in a terminal's form: neither scdoc nor groff may complain.
execute_process(COMMAND ${SCDOC} INPUT_FILE ${PAGE} OUTPUT_FILE ${SCRATCH}
  RESULT_VARIABLE result ERROR_VARIABLE complaints)
if(NOT result EQUAL 0 OR complaints)
  message(FATAL_ERROR "scdoc: ${complaints}")
endif()
execute_process(COMMAND groff -man -Tutf8 -ww -P-c -P-b -P-u ${SCRATCH}
  RESULT_VARIABLE result ERROR_VARIABLE complaints OUTPUT_VARIABLE text)
if(NOT result EQUAL 0 OR complaints OR NOT text MATCHES "DESCRIPTION")
  message(FATAL_ERROR "groff: ${complaints}")
endif()
