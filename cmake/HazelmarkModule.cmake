# What every target of the project is compiled with, and the two commands that make a module and its tests.

add_library(hazelmark_options INTERFACE)
target_compile_options(hazelmark_options INTERFACE -Wall -Wextra -Wpedantic -Werror)
target_compile_definitions(hazelmark_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                                                       QT_NO_FOREACH)
if(HAZELMARK_FUZZ)
  target_compile_options(hazelmark_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(HAZELMARK_SANITIZE OR HAZELMARK_FUZZ)
  target_compile_options(hazelmark_options INTERFACE -fsanitize=address,undefined
                                                     -fno-sanitize-recover=undefined
                                                     -fno-omit-frame-pointer)
  target_link_options(hazelmark_options INTERFACE -fsanitize=address,undefined)
endif()

# hazelmark_module(NAME SOURCES ... [PUBLIC ...] [PRIVATE ...])
#
# A static library of the sources in the calling folder. Its headers are found by name alone, and only by targets
# that link it: the PUBLIC and PRIVATE lists are the arrows of the table in src/README.md.
function(hazelmark_module name)
  cmake_parse_arguments(arg "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC hazelmark_options ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
endfunction()

# hazelmark_test(NAME SOURCES ... LIBS ...)
#
# One test program a module. Every case is a test of its own for CTest; windows open on the offscreen platform.
function(hazelmark_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE hazelmark_options ${arg_LIBS} GTest::gmock GTest::gtest)
  gtest_discover_tests(
    ${name}
    DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TZ=UTC" TIMEOUT 300)
endfunction()
