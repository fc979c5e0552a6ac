file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
execute_process(COMMAND ${AZCOLL} crea --db azienda.db --esempio WORKING_DIRECTORY ${FOLDER}
                COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PROGRAM} WORKING_DIRECTORY ${FOLDER} OUTPUT_VARIABLE printed
                COMMAND_ERROR_IS_FATAL ANY)
if(NOT printed STREQUAL "Stato 0, codice 122\n")
  message(FATAL_ERROR "unexpected output: ${printed}")
endif()
