# Installs the build tree BUILD into an empty STAGE.
file(REMOVE_RECURSE ${STAGE})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${STAGE}
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
