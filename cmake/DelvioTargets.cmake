# Functions that make Delvio's targets. Every target sees headers as <folder/header.h> from the
# project's top folders, and the Mac's names from platform/include.

# Counts how often each branch of a target's sources is taken, where DELVIO_COVERAGE is on. The
# counters lie in a file that is mapped into the process (%c), so that they also count for a process
# that a signal ends; all processes share four files per program (%4m).
function(delvio_count_branches target)
  if(DELVIO_COVERAGE)
    target_compile_options(${target} PRIVATE
      -fcoverage-mapping -fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/%c%4m.profraw
      "SHELL:-mllvm -runtime-counter-relocation=true")
    target_link_options(${target} INTERFACE -fprofile-instr-generate)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL STATIC_LIBRARY)
      # Programs that share a file must have the same functions in the same order.
      target_link_options(${target} INTERFACE
        "LINKER:--whole-archive,$<TARGET_FILE:${target}>,--no-whole-archive")
    endif()
  endif()
endfunction()

# A room of the platform: objects, which become part of the one platform library.
function(delvio_platform_room name)
  add_library(platform_${name} OBJECT ${ARGN})
  target_include_directories(platform_${name} PRIVATE
    ${PROJECT_SOURCE_DIR}/platform/include ${PROJECT_SOURCE_DIR}/platform/host_include
    ${PROJECT_SOURCE_DIR}/platform)
  target_link_libraries(platform_${name} PUBLIC gnustep)
endfunction()

# A part of the plug-in: objects, so that the linker keeps categories and classes named at run time.
function(delvio_plugin_library name)
  add_library(dv_${name} OBJECT)
  target_include_directories(dv_${name} PUBLIC ${PROJECT_SOURCE_DIR}/plugin
                                               ${PROJECT_SOURCE_DIR}/platform/include)
  delvio_count_branches(dv_${name})
endfunction()

find_package(GTest REQUIRED)
include(GoogleTest)

# A program of GoogleTest cases: delvio_test(NAME x SOURCES ... LIBRARIES ... [DISPLAY] [LEAKS]).
# With DISPLAY its cases run in their own X server, with their own home folder.
# With LEAKS a sanitized program fails when it leaves memory that nothing points to. Use LEAKS for
# programs that use the toolkit little, because the toolkit's objects live until a pool is drained.
function(delvio_test)
  cmake_parse_arguments(arg "DISPLAY;LEAKS" "NAME" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${arg_NAME} ${arg_SOURCES})
  target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBRARIES} test_support GTest::gtest)
  target_precompile_headers(${arg_NAME} REUSE_FROM precompiled_test_headers)
  set(runner ${PROJECT_SOURCE_DIR}/tests/support/run_isolated)
  if(arg_DISPLAY)
    list(APPEND runner --display)
  endif()
  if(arg_LEAKS)
    list(APPEND runner --leaks)
  endif()
  add_test(NAME ${arg_NAME} COMMAND ${runner} $<TARGET_FILE:${arg_NAME}>)
  set_tests_properties(${arg_NAME} PROPERTIES TIMEOUT 300)
endfunction()
