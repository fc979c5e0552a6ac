# Text files as constants of a library, so that its programs need no files at run time.
#
# azcoll_embed_texts(TARGET TYPE type HEADER header TEXTS NAME=file…): a library of that name that
# defines one constant per file, each {file name, text}. The header declares type and constants,
# inside the type's namespace. A library of its own, because a target that runs a command compiles
# nothing before all that it links to is built.

if(NOT CMAKE_SCRIPT_MODE_FILE)
  set(AZCOLL_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_FILE})

  function(azcoll_embed_texts target)
    cmake_parse_arguments(EMBED "" "TYPE;HEADER" "TEXTS" ${ARGN})
    set(output ${PROJECT_BINARY_DIR}/generated/${target}.cpp)
    set(files)
    foreach(pair IN LISTS EMBED_TEXTS)
      string(REGEX REPLACE "^[^=]*=" "" file ${pair})
      list(APPEND files ${PROJECT_SOURCE_DIR}/${file})
    endforeach()
    string(REPLACE ";" "," texts "${EMBED_TEXTS}")
    add_custom_command(
      OUTPUT ${output}
      COMMAND ${CMAKE_COMMAND} -DOUTPUT=${output} -DROOT=${PROJECT_SOURCE_DIR} -DTYPE=${EMBED_TYPE}
              -DHEADER=${EMBED_HEADER} -DTEXTS=${texts} -P ${AZCOLL_EMBED_SCRIPT}
      DEPENDS ${files} ${AZCOLL_EMBED_SCRIPT}
      COMMENT "Embedding texts: ${target}"
      VERBATIM)
    add_library(${target} STATIC ${output})
    target_link_libraries(${target} PRIVATE azcoll_settings)
  endfunction()
  return()
endif()

# The second part runs at build time: it writes OUTPUT. Every byte is written as an escape, in short
# literals that the compiler joins: no character of the text can end a literal, and no length does.
string(REGEX MATCH "^(.*)::([^:]*)$" matched ${TYPE})
set(namespace ${CMAKE_MATCH_1})
set(type ${CMAKE_MATCH_2})
set(source "#include \"${HEADER}\"\n\nnamespace ${namespace} {\n")
string(REPLACE "," ";" pairs "${TEXTS}")
foreach(pair IN LISTS pairs)
  string(REGEX MATCH "^([^=]*)=(.*)$" matched ${pair})
  set(constant ${CMAKE_MATCH_1})
  set(file ${ROOT}/${CMAKE_MATCH_2})
  get_filename_component(name ${file} NAME)
  file(READ ${file} bytes HEX)
  string(LENGTH "${bytes}" digits)
  math(EXPR length "${digits} / 2")
  string(REGEX REPLACE "(..)" "\\\\x\\1" bytes "${bytes}")
  set(byte "....")
  set(line "${byte}${byte}${byte}${byte}${byte}${byte}${byte}${byte}${byte}${byte}")
  string(REGEX REPLACE "(${line}${line})" "\\1\"\n    \"" bytes "${bytes}")
  string(APPEND source "\nconst ${type} ${constant}{\n    \"${name}\",\n    {\"${bytes}\",\n"
                       "     ${length}}};\n")
endforeach()
string(APPEND source "\n}  // namespace ${namespace}\n")
file(WRITE ${OUTPUT} "${source}")
