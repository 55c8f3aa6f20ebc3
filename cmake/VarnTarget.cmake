# What every target of this project has in common, so that a warning or a missing sanitizer in one
# of them cannot go unnoticed.

option(VARN_SANITIZE "Build with the address, leak and undefined-behaviour sanitizers" OFF)

# varn_target(<target>): warnings as errors, hidden symbols, C++17, and the sanitizers when asked
# for. Assertions stay on under the sanitizers whatever the build type says. Calls inside a library
# go to the library's own functions, which is what lets the compiler inline them.
function(varn_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE
    -fno-semantic-interposition
    -Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion -Wshadow
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2)
  if(VARN_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -UNDEBUG)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
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
