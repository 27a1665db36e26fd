# Run as a script behind the link: checks INSTALLER with KWAPAYLOAD against CONTENTS, and removes it if it has an error.
execute_process(COMMAND ${KWAPAYLOAD} verify --allow-warnings --contents ${CONTENTS} ${INSTALLER} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  file(REMOVE ${INSTALLER})
  message(FATAL_ERROR "The installer is not in order and was removed: ${INSTALLER}\n"
    "Where files are right that differ from the list of contents, 'kwapayload contents' makes a new one.")
endif()
