# Run as a script after the link: checks INSTALLER with KWAPAYLOAD against CONTENTS, and removes it if it has an error.
execute_process(COMMAND ${KWAPAYLOAD} verify --allow-warnings --contents ${CONTENTS} ${INSTALLER}
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  file(REMOVE ${INSTALLER})
  message(FATAL_ERROR " ${INSTALLER} has errors and was removed.")
endif()
