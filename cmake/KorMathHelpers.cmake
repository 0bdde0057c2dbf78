# Helpers shared by the subsystem folders.
#
# kormath_add_subsystem(NAME <name> SOURCES <files...> [DEPS <targets...>])
#   A static, position-independent library kormath_<name>; all subsystem
#   libraries are combined into the one kormath library.
# kormath_add_test(NAME <name> SOURCES <files...> DEPS <targets...>)
#   A GoogleTest executable registered with CTest.
# kormath_folder_sources(<sources_var> <tests_var>)
#   The library sources (*.cpp) and the test sources (*_test.cpp) of the
#   calling folder, so that a new file needs no edit of the folder's list.
#   Benchmarks of internals beside their sources (*_benchmark.cpp) are in
#   neither list.
# kormath_add_benchmark(NAME <name> SOURCES <files...> DEPS <targets...>)
#   A Google Benchmark executable for an internal part that the installed
#   library does not export; the public benchmarks live in bench/.

set(KORMATH_SOURCE_ROOT "${PROJECT_SOURCE_DIR}/src")

function(kormath_set_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(KORMATH_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  # Floating point is part of the contract: no contraction into FMA.
  target_compile_options(${target} PRIVATE -ffp-contract=off)
  # Deliberate rounding through float goes through an optimisation barrier
  # (transforms/float_rounding_detail.h), so the vectorisers stay on.
endfunction()

function(kormath_add_subsystem)
  cmake_parse_arguments(A "" "NAME" "SOURCES;DEPS" ${ARGN})
  set(target kormath_${A_NAME})
  add_library(${target} STATIC ${A_SOURCES})
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${KORMATH_SOURCE_ROOT}>)
  target_compile_definitions(${target} PRIVATE KORMATH_BUILDING)
  if(A_DEPS)
    target_link_libraries(${target} PUBLIC ${A_DEPS})
  endif()
  kormath_set_compile_options(${target})
  # Calls between the library's own exported functions stay direct (no PLT):
  # nothing in the library is meant to be interposed.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  endif()
  set_property(GLOBAL APPEND PROPERTY KORMATH_SUBSYSTEM_TARGETS ${target})
endfunction()

function(kormath_add_test)
  if(NOT KORMATH_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(A "" "NAME" "SOURCES;DEPS" ${ARGN})
  add_executable(${A_NAME} ${A_SOURCES})
  target_link_libraries(${A_NAME} PRIVATE ${A_DEPS} GTest::gtest GTest::gtest_main)
  kormath_set_compile_options(${A_NAME})
  gtest_discover_tests(${A_NAME} DISCOVERY_TIMEOUT 60)
endfunction()

function(kormath_folder_sources sources_var tests_var)
  file(GLOB all CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  set(sources)
  set(tests)
  foreach(f IN LISTS all)
    if(f MATCHES "_benchmark\\.cpp$")
      continue()
    elseif(f MATCHES "_test\\.cpp$")
      list(APPEND tests ${f})
    else()
      list(APPEND sources ${f})
    endif()
  endforeach()
  set(${sources_var} ${sources} PARENT_SCOPE)
  set(${tests_var} ${tests} PARENT_SCOPE)
endfunction()

function(kormath_add_benchmark)
  if(NOT KORMATH_BUILD_BENCHMARKS)
    return()
  endif()
  cmake_parse_arguments(A "" "NAME" "SOURCES;DEPS" ${ARGN})
  find_package(benchmark REQUIRED)
  add_executable(${A_NAME} ${A_SOURCES})
  target_link_libraries(${A_NAME} PRIVATE ${A_DEPS} benchmark::benchmark)
  target_include_directories(${A_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/bench)
  kormath_set_compile_options(${A_NAME})
endfunction()
