# The toolkit's headers, compiled once for the Objective-C++ sources below the folders. clang writes
# all protocols of the text that it reads into the object file, used or not; of precompiled headers it
# writes only those that the source uses. Without this the libraries would be twice as large, and the
# dynamic linker would relocate four times as many addresses in pages that each process then owns.
function(delvio_precompile_toolkit)
  if(NOT TARGET precompiled_toolkit)
    set(empty ${PROJECT_BINARY_DIR}/precompiled_toolkit.mm)
    file(WRITE ${empty} "")
    add_library(precompiled_toolkit OBJECT ${empty})
    target_include_directories(precompiled_toolkit PRIVATE ${PROJECT_SOURCE_DIR}/platform/include)
    target_link_libraries(precompiled_toolkit PRIVATE gnustep)
    target_precompile_headers(precompiled_toolkit PRIVATE
      $<$<COMPILE_LANGUAGE:OBJCXX>:<AppKit/AppKit.h$<ANGLE-R>>)
  endif()
  foreach(folder ${ARGN})
    delvio_targets_below(${PROJECT_SOURCE_DIR}/${folder} targets)
    foreach(target IN LISTS targets)
      get_target_property(type ${target} TYPE)
      get_target_property(sources ${target} SOURCES)
      if(type MATCHES "OBJECT_LIBRARY|STATIC|SHARED|MODULE" AND sources MATCHES "[.]mm(;|$)")
        target_precompile_headers(${target} REUSE_FROM precompiled_toolkit)
        get_target_property(home ${target} SOURCE_DIR)
        list(FILTER sources INCLUDE REGEX "[.]cpp$")
        list(TRANSFORM sources PREPEND ${home}/ REGEX "^[^/]")
        set_source_files_properties(${sources} TARGET_DIRECTORY ${target}
          PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
      endif()
    endforeach()
  endforeach()
endfunction()
