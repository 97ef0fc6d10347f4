# Installs the built project into a fresh scratch prefix, which the consumer,
# README example and command-line tests then use as a user would.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX} RESULT_VARIABLE rc
                OUTPUT_QUIET)
if(rc)
  message(FATAL_ERROR "install into ${PREFIX} failed")
endif()
