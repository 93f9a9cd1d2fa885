# Helpers shared by the subsystem folders.

# klote_library(<name> [DEPS lib...]): a static library of every .cpp in the
# calling folder, its public headers found as <name>/header.h from the top.
function(klote_library name)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  if(ARG_DEPS)
    target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  endif()
endfunction()

# klote_tests(<name> [LABELS label...] [DEPS lib...]): one GoogleTest program
# of every .cpp in the calling folder, registered with CTest.
function(klote_tests name)
  cmake_parse_arguments(ARG "" "" "LABELS;DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_executable(${name}_tests ${sources} ${PROJECT_SOURCE_DIR}/tests/exit_guard.cpp)
  target_link_libraries(${name}_tests PRIVATE ${ARG_DEPS} GTest::gtest_main)
  target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name}_tests PRIVATE
    KLOTE_BINARY_DIR="${PROJECT_BINARY_DIR}" KLOTE_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  set(labels unit)
  if(ARG_LABELS)
    set(labels ${ARG_LABELS})
  endif()
  set(props LABELS "${labels}")
  # Database tests share the run's throw-away cluster (tests/dbfixture).
  if("db" IN_LIST labels)
    target_link_libraries(${name}_tests PRIVATE dbfixture)
    list(APPEND props FIXTURES_REQUIRED klote_pgcluster)
  endif()
  gtest_discover_tests(${name}_tests PROPERTIES ${props} DISCOVERY_TIMEOUT 60)
endfunction()
