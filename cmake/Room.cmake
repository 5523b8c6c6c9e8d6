# Compile options of every target, in one place.
add_library(calmdeck_options INTERFACE)
target_compile_options(calmdeck_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
  -Wnon-virtual-dtor
  # When it optimises, GCC 12 sees overlaps inside std::string and unset members inside std::variant
  # that are not there (GCC bugs 105651 and 105562).
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-maybe-uninitialized>)
if(CALMDECK_WERROR)
  target_compile_options(calmdeck_options INTERFACE -Werror)
endif()
# The tests are fifty programs that hold the whole desktop each: LLD links one in a sixth of the time.
find_program(CALMDECK_LLD ld.lld)
if(CALMDECK_TESTS AND CALMDECK_LLD)
  add_link_options(-fuse-ld=lld)
endif()
if(CALMDECK_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# calmdeck_room(<name> SOURCES <file>... [USES <room>...] [LIBRARIES <library>...])
#
# One room of the house as a static library. USES are the rooms that it may include, and nothing
# else of the tree is linked, so an include that tests/includes.rules forbids does not link either.
# LIBRARIES are foreign and stay the room's own affair.
function(calmdeck_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "" "SOURCES;USES;LIBRARIES")
  add_library(${name} STATIC ${room_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${room_USES} PRIVATE calmdeck_options ${room_LIBRARIES})
endfunction()

# calmdeck_test(<name> SOURCES <file>... USES <library>... [LABELS <label>...])
function(calmdeck_test name)
  cmake_parse_arguments(PARSE_ARGV 1 test "" "" "SOURCES;USES;LABELS")
  add_executable(${name} ${test_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${test_USES} calmdeck_options GTest::gtest_main
                                        GTest::gmock)
  # Lines for a backtrace are enough here; the rest would take as long as the tests' own code.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Debug>:-g1>)
  # Worth its own cost from a few files on.
  list(LENGTH test_SOURCES files)
  if(files GREATER 3)
    target_precompile_headers(${name} PRIVATE
      <gtest/gtest.h> <functional> <map> <memory> <optional> <string> <vector>)
  endif()
  set(longest 120)
  if(test_LABELS MATCHES slow)
    set(longest 300)
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${longest} LABELS "${test_LABELS}")
endfunction()
