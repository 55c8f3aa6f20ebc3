# What every target of this project has in common, so that a warning or a missing sanitizer in one
# of them cannot go unnoticed.

# Not every compiler finds a linker that understands its intermediate code.
if(NOT DEFINED VARN_LINK_TIME_OPTIMIZATION)
  include(CheckIPOSupported)
  check_ipo_supported(RESULT result OUTPUT ignored LANGUAGES CXX)
  set(VARN_LINK_TIME_OPTIMIZATION ${result} CACHE INTERNAL "Whether release builds use it")
endif()

# varn_target(<target>): C++17, hidden symbols, and the warnings and sanitizers that are asked for.
# Assertions stay on under the sanitizers whatever the build type says. Calls inside a library go to
# the library's own functions, which is what lets the compiler inline them.
function(varn_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  if(VARN_WARNINGS)
    target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
      -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2)
  endif()
  if(VARN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(VARN_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${VARN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -UNDEBUG)
    target_link_options(${target} PRIVATE -fsanitize=${VARN_SANITIZE})
  endif()
  if(VARN_BUILD_FUZZERS)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# varn_test(<name> SOURCES ... [LIBRARIES ...]): one GoogleTest program, its cases registered with
# CTest one by one.
function(varn_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  varn_target(${name})
  target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} GTest::gmock GTest::gtest_main)
  # Tests have the names that they give themselves, without the bytes of their parameters.
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 NO_PRETTY_VALUES)
endfunction()
