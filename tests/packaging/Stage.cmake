# Installs BUILD into STAGE, an empty folder, as a package would.
file(REMOVE_RECURSE ${STAGE})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${STAGE} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
