# The flags that every target shares, and the three kinds of target that the folders make.

add_library(kestrion_warnings INTERFACE)
target_compile_options(kestrion_warnings INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wformat=2 -Wno-missing-field-initializers
  $<$<BOOL:${KESTRION_WERROR}>:-Werror>)

if(KESTRION_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    add_compile_options(-fsanitize=fuzzer-no-link) # coverage of the library is what guides a fuzzer
  endif()
endif()

# The runtime: no exceptions, no run-time type information, no static constructors.
function(kestrion_runtime_options target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:kestrion_warnings>)
  target_compile_options(${target} PRIVATE
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti> -ffunction-sections -fdata-sections)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

# kestrion_tests(NAME [INSTALLATION] source...): one test program; every TEST is a test of its own to
# ctest, so that each starts in a fresh process. With INSTALLATION the tests find a complete installation
# directory under that name, which they share and must not change.
function(kestrion_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "INSTALLATION" "" "")
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE kestrion kestrion_warnings GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE
    KESTRION_SOURCE_DIR="${PROJECT_SOURCE_DIR}" KESTRION_BUILD_DIR="${PROJECT_BINARY_DIR}"
    INSTALLATION="${PROJECT_BINARY_DIR}/installation")
  set(properties TIMEOUT 300)
  if(arg_INSTALLATION)
    list(APPEND properties FIXTURES_REQUIRED installation)
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES ${properties})
endfunction()

# kestrion_benchmark(NAME source...): one Google Benchmark program, built and run by `make bench`.
function(kestrion_benchmark name)
  add_executable(${name} EXCLUDE_FROM_ALL ${ARGN})
  target_link_libraries(${name} PRIVATE kestrion kestrion_warnings benchmark::benchmark)
  target_compile_options(${name} PRIVATE -falign-loops=64)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/bench)
  add_dependencies(benchmarks ${name})
  set_property(GLOBAL APPEND PROPERTY KESTRION_BENCHMARKS ${name})
endfunction()

# kestrion_fuzz_target(NAME source): under clang with sanitizers a libFuzzer program; with any other
# compiler a program that replays its corpus, which is a test.
function(kestrion_fuzz_target name source)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE kestrion kestrion_warnings)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/fuzz)
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND KESTRION_SANITIZE)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
  endif()
  add_test(NAME corpus.${name} COMMAND ${name} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
endfunction()
