# One static library per room of src/. The include path is all of src/: which headers a room may
# include, tools/check-house.sh holds.

add_library(azcoll_settings INTERFACE)
target_include_directories(azcoll_settings INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_features(azcoll_settings INTERFACE cxx_std_20)
target_compile_options(
  azcoll_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                            -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # When it optimises, GCC 12 takes "text" + std::string for an overlapping copy (its bug 105651) and
  # the storage of a std::variant for uninitialized (its bug 105562).
  target_compile_options(azcoll_settings INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()
if(AZCOLL_SANITIZE)
  target_compile_options(azcoll_settings INTERFACE -fsanitize=address -fno-omit-frame-pointer)
  target_link_options(azcoll_settings INTERFACE -fsanitize=address,undefined)
endif()
if(AZCOLL_FUZZ)
  # Everything is instrumented, the engine too: what a fuzzer does not see it cannot steer to.
  target_compile_options(azcoll_settings INTERFACE -fsanitize=fuzzer-no-link)
  target_compile_definitions(azcoll_settings INTERFACE _GLIBCXX_ASSERTIONS)
endif()
if(AZCOLL_COVERAGE)
  target_compile_options(azcoll_settings INTERFACE --coverage)
  target_link_options(azcoll_settings INTERFACE --coverage)
endif()

# azcoll_together(TARGET): a few sources in one translation unit, where most of the compile time are the
# long headers that all of them read.
function(azcoll_together target)
  if(NOT CMAKE_UNITY_BUILD)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 4)
  endif()
endfunction()

# The table of rooms (cmake/rooms.txt): AZCOLL_ROOMS_OF_name holds what a room may include, and
# AZCOLL_FOLDERS_OF_name its folders, those of the rooms inside it included.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/rooms.txt)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/rooms.txt lines REGEX "^[a-z/]+:")
foreach(line IN LISTS lines)
  string(REGEX MATCH "^(([a-z]+)[a-z/]*): *(.*)$" matched "${line}")
  list(APPEND AZCOLL_FOLDERS_OF_${CMAKE_MATCH_2} ${CMAKE_MATCH_1})
  if(CMAKE_MATCH_1 STREQUAL CMAKE_MATCH_2)
    string(REPLACE " " ";" AZCOLL_ROOMS_OF_${CMAKE_MATCH_1} "${CMAKE_MATCH_3}")
  endif()
endforeach()

# azcoll_room(NAME [WITHOUT rooms…] [LIBRARIES targets…]): the library of a room with the rooms inside
# it, linked with what the table names, but for rooms that this build does without.
function(azcoll_room name)
  cmake_parse_arguments(ROOM "" "" "WITHOUT;LIBRARIES" ${ARGN})
  if(NOT AZCOLL_FOLDERS_OF_${name})
    message(FATAL_ERROR "cmake/rooms.txt does not know the room ${name}")
  endif()
  list(TRANSFORM AZCOLL_FOLDERS_OF_${name} REPLACE "(.+)" "${PROJECT_SOURCE_DIR}/src/\\1/*.cpp"
       OUTPUT_VARIABLE patterns)
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  set(target azcoll_${name})
  set_property(GLOBAL APPEND PROPERTY AZCOLL_ROOMS ${name})
  add_library(${target} STATIC ${sources})
  target_link_libraries(${target} PUBLIC azcoll_settings ${ROOM_LIBRARIES})
  if(AZCOLL_SANITIZE)
    # The rooms only: it doubles the compile time of the tests, and they are not what it watches.
    target_compile_options(${target} PRIVATE -fsanitize=undefined -fno-sanitize-recover=all)
  endif()
  if(NOT AZCOLL_COVERAGE)
    # In the builds for tests the rooms are optimised, so that the tests run twice as fast, and the tests
    # are not, so that they compile in three quarters of the time.
    target_compile_options(${target} PRIVATE $<$<CONFIG:Debug>:-O1>)
  endif()
  foreach(room IN LISTS AZCOLL_ROOMS_OF_${name})
    if(NOT room IN_LIST ROOM_WITHOUT)
      target_link_libraries(${target} PUBLIC azcoll_${room})
    endif()
  endforeach()
endfunction()

# azcoll_alone(SOURCE file): for each room a program of all its objects, of the rooms that the table names
# for it and what those need: what a room needed of one above it would be missing.
function(azcoll_alone)
  cmake_parse_arguments(ALONE "" "SOURCE" "" ${ARGN})
  get_property(rooms GLOBAL PROPERTY AZCOLL_ROOMS)
  foreach(room IN LISTS rooms)
    add_executable(${room}_alone ${ALONE_SOURCE})
    target_link_libraries(${room}_alone PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,azcoll_${room}>)
  endforeach()
endfunction()

# azcoll_command(NAME SOURCE file): the executable of that name on top of the room `cli`.
function(azcoll_command name)
  cmake_parse_arguments(COMMAND "" "SOURCE" "" ${ARGN})
  if(EXISTS ${PROJECT_SOURCE_DIR}/${COMMAND_SOURCE})
    add_executable(${name}_command ${COMMAND_SOURCE})
    set_target_properties(${name}_command PROPERTIES OUTPUT_NAME ${name})
    target_link_libraries(${name}_command PRIVATE azcoll_cli)
  endif()
endfunction()

# azcoll_tests(NAME ROOMS rooms… FOLDER folder [TOGETHER filter]): one test program from all sources
# of a folder of tests/, every case a CTest test. The cases that the filter names share something that
# takes long to start (a server), and are one test.
function(azcoll_tests name)
  cmake_parse_arguments(TESTS "" "FOLDER;TOGETHER" "ROOMS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${TESTS_FOLDER}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  azcoll_together(${name})
  foreach(room IN LISTS TESTS_ROOMS)
    target_link_libraries(${name} PRIVATE azcoll_${room})
  endforeach()
  target_link_libraries(${name} PRIVATE GTest::gtest_main GTest::gmock)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE AZCOLL_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  if(TESTS_TOGETHER)
    add_test(NAME ${name}_together COMMAND ${name} --gtest_filter=${TESTS_TOGETHER})
    set(apart TEST_FILTER "-${TESTS_TOGETHER}")
  endif()
  gtest_discover_tests(${name} ${apart} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 300)
endfunction()
