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

# hazelmark_precompiled(NAME HEADER LIBS ...)
#
# A target that compiles nothing but a header that many sources include, for other targets to use.
set(precompiled_dir ${CMAKE_CURRENT_LIST_DIR}/precompiled)
function(hazelmark_precompiled name header)
  add_library(${name} STATIC EXCLUDE_FROM_ALL ${precompiled_dir}/Empty.cpp)
  target_precompile_headers(${name} PRIVATE ${precompiled_dir}/${header})
  target_link_libraries(${name} PRIVATE hazelmark_options ${ARGN})
endfunction()
hazelmark_precompiled(precompiled_core Core.h Qt6::Gui)
hazelmark_precompiled(precompiled_widgets Widgets.h Qt6::Widgets)

# hazelmark_module(NAME [WIDGETS] [MOC] SOURCES ... [PUBLIC ...] [PRIVATE ...])
#
# A static library of the sources in the calling folder. Its headers are found by name alone, and only by targets
# that link it: the PUBLIC and PRIVATE lists are the arrows of the table in src/README.md. WIDGETS: it draws widgets.
# MOC: it has classes with signals of their own.
function(hazelmark_module name)
  cmake_parse_arguments(arg "WIDGETS;MOC" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC ${arg_MOC})
  if(arg_WIDGETS)
    target_precompile_headers(${name} REUSE_FROM precompiled_widgets)
  else()
    target_precompile_headers(${name} REUSE_FROM precompiled_core)
  endif()
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC hazelmark_options ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
endfunction()

# hazelmark_test(NAME [WIDGETS] [MOC] SOURCES ... LIBS ...)
#
# One test program a module, WIDGETS and MOC as for a module. For CTest it is one test: starting a program for each of
# its cases takes longer than the cases. Windows open on the offscreen platform.
function(hazelmark_test name)
  cmake_parse_arguments(arg "WIDGETS;MOC" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC ${arg_MOC})
  if(arg_WIDGETS)
    target_precompile_headers(${name} REUSE_FROM precompiled_widget_tests)
  else()
    target_precompile_headers(${name} REUSE_FROM precompiled_tests)
  endif()
  target_link_libraries(${name} PRIVATE hazelmark_options ${arg_LIBS} GTest::gmock GTest::gtest)
  add_dependencies(${name} hazelmark-decoder)
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;TZ=UTC;XDG_STATE_HOME=${CMAKE_CURRENT_BINARY_DIR}/state"
                                               TIMEOUT 900)
endfunction()
