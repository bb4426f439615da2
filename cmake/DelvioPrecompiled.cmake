# Headers that nearly every source includes, compiled once for all of platform/ and hosts/. It saves
# half of the compiler's time. precompiled_headers_test.py finds a missing #include that they hide.

function(delvio_targets_below folder result)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  get_property(subfolders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(subfolder IN LISTS subfolders)
    delvio_targets_below(${subfolder} more)
    list(APPEND targets ${more})
  endforeach()
  set(${result} ${targets} PARENT_SCOPE)
endfunction()

function(delvio_precompile_headers)
  set(empty ${PROJECT_BINARY_DIR}/precompiled)
  file(WRITE ${empty}.cpp "")
  file(WRITE ${empty}.mm "")
  add_library(precompiled_headers OBJECT ${empty}.cpp ${empty}.mm)
  set_target_properties(precompiled_headers PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(precompiled_headers PRIVATE gnustep)
  target_precompile_headers(precompiled_headers PRIVATE
    <algorithm> <filesystem> <fstream> <functional> <map> <memory> <optional> <sstream> <string>
    <vector> $<$<COMPILE_LANGUAGE:OBJCXX>:<AppKit/AppKit.h$<ANGLE-R>>)
  foreach(folder ${ARGN})
    delvio_targets_below(${PROJECT_SOURCE_DIR}/${folder} targets)
    foreach(target IN LISTS targets)
      get_target_property(type ${target} TYPE)
      get_target_property(sources ${target} SOURCES)
      get_target_property(visibility ${target} CXX_VISIBILITY_PRESET)
      # The code of a program is position independent in another way than a library's. Headers are
      # compiled for one visibility of functions.
      if(type MATCHES "OBJECT_LIBRARY|STATIC|SHARED|MODULE" AND NOT visibility AND NOT sources MATCHES "[.]c(;|$)")
        target_precompile_headers(${target} REUSE_FROM precompiled_headers)
      endif()
    endforeach()
  endforeach()
endfunction()
