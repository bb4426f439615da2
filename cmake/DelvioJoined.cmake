# The Objective-C++ sources of a library, compiled as one. GNU's run time does work for all classes of
# the process whenever an object file reports its classes, so that fewer object files start faster. It
# also takes less of the compiler's time. Archives stay apart: of them each program takes only what it
# needs, and a class must not come twice with two libraries of one process. Each source still stands alone: a library LIBRARY_apart, which
# nothing needs, compiles them one by one, for the tools that read compile_commands.json.

function(delvio_compile_apart target sources)
  add_library(${target}_apart OBJECT EXCLUDE_FROM_ALL ${sources})
  foreach(property INCLUDE_DIRECTORIES COMPILE_DEFINITIONS COMPILE_OPTIONS LINK_LIBRARIES
                   POSITION_INDEPENDENT_CODE CXX_VISIBILITY_PRESET)
    get_target_property(value ${target} ${property})
    if(value)
      set_target_properties(${target}_apart PROPERTIES ${property} "${value}")
    endif()
  endforeach()
endfunction()

function(delvio_join_sources)
  foreach(folder ${ARGN})
    delvio_targets_below(${PROJECT_SOURCE_DIR}/${folder} targets)
    foreach(target IN LISTS targets)
      get_target_property(type ${target} TYPE)
      get_target_property(sources ${target} SOURCES)
      list(FILTER sources INCLUDE REGEX "[.]mm$")
      list(LENGTH sources count)
      if(count LESS 2 OR NOT type MATCHES "OBJECT_LIBRARY|SHARED")
        continue()
      endif()
      get_target_property(place ${target} SOURCE_DIR)
      list(TRANSFORM sources PREPEND ${place}/)
      set(text "")
      foreach(source IN LISTS sources)
        string(APPEND text "#include \"${source}\"\n")
      endforeach()
      set(joined ${PROJECT_BINARY_DIR}/joined/${target}.mm)
      file(CONFIGURE OUTPUT ${joined} CONTENT "${text}" @ONLY)
      delvio_compile_apart(${target} "${sources}")
      set_source_files_properties(${sources} TARGET_DIRECTORY ${target} PROPERTIES HEADER_FILE_ONLY ON)
      target_sources(${target} PRIVATE ${joined})
    endforeach()
  endforeach()
endfunction()
