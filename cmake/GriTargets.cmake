# What every target of the project shares: language, warnings, sanitizers, visibility.

find_program(GRI_CCACHE ccache)
if(GRI_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER "${GRI_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${GRI_CCACHE}")
endif()

add_library(gri_flags INTERFACE)
target_compile_features(gri_flags INTERFACE cxx_std_20)
target_include_directories(gri_flags INTERFACE
  "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/include")
target_compile_options(gri_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wundef
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast>
  $<$<BOOL:${GRI_WARNINGS_AS_ERRORS}>:-Werror>
  # Decoded samples are fixed to the bit: a fused multiply-add would change them.
  -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND GRI_SANITIZE)
  # GCC 12 sees impossible paths through instrumented code. (The last option is for clang-tidy,
  # which reads these and doesn't know all of them.)
  target_compile_options(gri_flags INTERFACE -Wno-maybe-uninitialized -Wno-stringop-overflow
    -Wno-unknown-warning-option)
endif()
# 64-bit file positions, also on 32-bit systems.
target_compile_definitions(gri_flags INTERFACE _FILE_OFFSET_BITS=64)
if(NOT GRI_SIMD)
  target_compile_definitions(gri_flags INTERFACE HWY_COMPILE_ONLY_SCALAR GRI_SCALAR_ONLY)
endif()
if(GRI_SANITIZE)
  target_compile_options(gri_flags INTERFACE
    -fsanitize=${GRI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -O1)
  target_link_options(gri_flags INTERFACE -fsanitize=${GRI_SANITIZE})
  target_compile_definitions(gri_flags INTERFACE GRI_SANITIZED)
endif()
if(GRI_BUILD_FUZZERS)
  # The fuzzer follows the paths through the library, not only through the target.
  target_compile_options(gri_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(GRI_COVERAGE)
  target_compile_options(gri_flags INTERFACE --coverage)
  target_link_options(gri_flags INTERFACE --coverage)
endif()

# Tests draw narrow numbers from wide random ones all the time. Linked last: the last option counts.
add_library(gri_test_flags INTERFACE)
target_compile_options(gri_test_flags INTERFACE -Wno-sign-conversion -Wno-conversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees impossible overflows where vectors of bytes grow.
  target_compile_options(gri_test_flags INTERFACE -Wno-array-bounds -Wno-stringop-overflow
    -Wno-stringop-overread -Wno-unknown-warning-option)
endif()

# gri_add_library(NAME SOURCES file... [LINK library...])
# A static, position-independent library with hidden symbols; one for each folder of src/.
function(gri_add_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  if(NOT arg_SOURCES)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE gri_flags ${arg_LINK})
    return()
  endif()
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC gri_flags ${arg_LINK})
  set_target_properties(${name} PROPERTIES
    PREFIX "lib" POSITION_INDEPENDENT_CODE ON
    C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    CXX_EXTENSIONS OFF)
endfunction()

# gri_add_tests(NAME SOURCES file... [LINK library...])
# A GoogleTest program; each of its tests is a test of CTest's. GRI_TEST_DATA names tests/data.
function(gri_add_tests name)
  if(NOT GRI_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  if(NOT arg_SOURCES)
    return()
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE
    gri_flags ${arg_LINK} GTest::gmock GTest::gtest_main gri_test_flags)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_compile_definitions(${name} PRIVATE
    GRI_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()

# gri_add_bench(NAME SOURCES file... [LINK library...]): a Google Benchmark program.
function(gri_add_bench name)
  if(NOT GRI_BUILD_BENCHMARKS)
    return()
  endif()
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE gri_flags ${arg_LINK} benchmark::benchmark_main)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
endfunction()
