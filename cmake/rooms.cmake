# One static library per room of src/. A room sees its own headers and those of the rooms that it
# names; tools/check-house holds the same table over the include lines.

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

# azcoll_room(NAME [SUBROOMS] [DEPENDS rooms…] [EXTRA folders…] [LIBRARIES targets…]). With SUBROOMS
# the sources of the folders inside belong to it.
function(azcoll_room name)
  cmake_parse_arguments(ROOM "SUBROOMS" "" "DEPENDS;EXTRA;LIBRARIES" ${ARGN})
  set(sources)
  foreach(folder IN ITEMS ${name} ${ROOM_EXTRA})
    file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
    list(APPEND sources ${found})
  endforeach()
  if(ROOM_SUBROOMS)
    file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${name}/*/*.cpp)
    list(APPEND sources ${found})
  endif()
  set(target azcoll_${name})
  if(NOT sources)
    add_library(${target} INTERFACE)
    set(scope INTERFACE)
  else()
    add_library(${target} STATIC ${sources})
    set(scope PUBLIC)
  endif()
  target_link_libraries(${target} ${scope} azcoll_settings ${ROOM_LIBRARIES})
  if(AZCOLL_SANITIZE AND sources)
    # The rooms only: it doubles the compile time of the tests, and they are not what it watches. For
    # the same reason it is they that are optimised: the tests run twice as fast.
    target_compile_options(${target} PRIVATE -fsanitize=undefined -fno-sanitize-recover=all -O1)
  endif()
  foreach(room IN LISTS ROOM_DEPENDS)
    target_link_libraries(${target} ${scope} azcoll_${room})
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
