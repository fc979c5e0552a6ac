# The Windows build: the portable rooms, the provider over the caller's own ADO objects, and the
# automation library AZCOLLSRV.dll. Included by the main file when the target is Windows.

# Many sources in one translation unit: they read the same long headers, and the library gets smaller.
set(CMAKE_UNITY_BUILD ON)
set(CMAKE_UNITY_BUILD_BATCH_SIZE 16)
add_compile_definitions(UNICODE _UNICODE _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
# No path of the building machine and no time in the binaries: the same sources give the same bytes.
add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>")
add_link_options(-Wl,--no-insert-timestamp)

azcoll_room(data)
azcoll_room(component DEPENDS data EXTRA linked clifor activities)
azcoll_room(ado DEPENDS data LIBRARIES ole32 oleaut32 uuid)
azcoll_room(automation DEPENDS component ado)

# The type library: widl takes ASCII names only, so the accents of the table of members are put into
# its output; the platform's own interfaces come with Wine's development files.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(AZCOLL_WIDL_FLAGS -I/usr/include/wine/wine/windows
                      -L/usr/lib/x86_64-linux-gnu/wine/x86_64-windows
    CACHE STRING "Where widl finds the platform's interface definitions and stdole2.tlb")
set(idl ${PROJECT_SOURCE_DIR}/src/automation/azcollsrv.idl)
set(tlb ${PROJECT_BINARY_DIR}/AZCOLLSRV.tlb)
add_custom_command(
  OUTPUT ${tlb}
  COMMAND ${AZCOLL_WIDL} ${AZCOLL_WIDL_FLAGS} -t -o ascii.tlb ${idl}
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/tools/accent_tlb.py ascii.tlb ${tlb}
          ${PROJECT_SOURCE_DIR}/src/component/members.h
  DEPENDS ${idl} ${PROJECT_SOURCE_DIR}/tools/accent_tlb.py
          ${PROJECT_SOURCE_DIR}/src/component/members.h
  WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
  VERBATIM)
add_custom_target(azcoll_type_library DEPENDS ${tlb})

string(REPLACE "." "," version_numbers "${PROJECT_VERSION}.0")
set(dll_sources ${PROJECT_SOURCE_DIR}/src/automation/dll/exports.cpp
                ${PROJECT_SOURCE_DIR}/src/automation/dll/azcollsrv.def
                ${PROJECT_SOURCE_DIR}/src/automation/dll/azcollsrv.rc)
set_source_files_properties(
  ${PROJECT_SOURCE_DIR}/src/automation/dll/azcollsrv.rc
  PROPERTIES OBJECT_DEPENDS ${tlb}
             COMPILE_OPTIONS "-c;1252"
             COMPILE_DEFINITIONS "AZCOLL_VERSION_NUMBERS=${version_numbers}"
             INCLUDE_DIRECTORIES ${PROJECT_BINARY_DIR})
add_library(azcollsrv SHARED ${dll_sources})
add_dependencies(azcollsrv azcoll_type_library)
set_target_properties(azcollsrv PROPERTIES OUTPUT_NAME AZCOLLSRV PREFIX "")
target_link_libraries(azcollsrv PRIVATE azcoll_automation)
target_link_options(azcollsrv PRIVATE -s -Wl,--exclude-all-symbols)

# The tests bring a database engine with them: ADO of their own over the embedded engine, which is
# built on SQLite's source. The library itself contains neither.
set(AZCOLL_SQLITE_SOURCE "" CACHE PATH "Folder with sqlite3.c and sqlite3.h; without it no tests")
if(BUILD_TESTING AND AZCOLL_SQLITE_SOURCE)
  add_library(sqlite3 STATIC ${AZCOLL_SQLITE_SOURCE}/sqlite3.c)
  target_include_directories(sqlite3 SYSTEM INTERFACE ${AZCOLL_SQLITE_SOURCE})
  target_compile_definitions(sqlite3 PRIVATE SQLITE_OMIT_LOAD_EXTENSION)
  target_compile_options(sqlite3 PRIVATE -O1)
  add_library(SQLite::SQLite3 ALIAS sqlite3)
  azcoll_room(tsql)
  azcoll_room(cursor DEPENDS data)
  azcoll_room(embedded SUBROOMS DEPENDS data cursor tsql LIBRARIES SQLite::SQLite3)
  # What only the tests use is compiled for their sake.
  foreach(room IN ITEMS tsql cursor embedded)
    target_compile_options(azcoll_${room} PRIVATE -O1)
  endforeach()
  add_subdirectory(tests/windows)
endif()
