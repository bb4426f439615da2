# The compiler, the language and GNUstep, once for every target.

if(NOT CMAKE_OBJCXX_COMPILER_ID STREQUAL "Clang" OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "Delvio needs clang for C++ and Objective-C++; configure with a preset: cmake --preset release")
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# A program is not linked again when only the inside of a shared library that it uses changes.
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

add_compile_options(-Wall -Wextra -Werror)

# Most relocations only add the address that a library was loaded at. Packed, they take two bits each
# instead of 24 bytes, all of which the dynamic linker would read into each process.
add_link_options(-Wl,-z,pack-relative-relocs -Wl,--hash-style=gnu)

# CMake knows this flag for C and C++ only; without it programs record a library by its build path.
set(CMAKE_SHARED_LIBRARY_SONAME_OBJCXX_FLAG "-Wl,-soname,")

# CMake 3.25 sets no run-time search path for targets that are only Objective-C++.
foreach(kind EXECUTABLE SHARED_LIBRARY)
  set(CMAKE_${kind}_RUNTIME_OBJCXX_FLAG "-Wl,-rpath,")
  set(CMAKE_${kind}_RUNTIME_OBJCXX_FLAG_SEP ":")
endforeach()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)

# libobjc's headers belong to the compiler that built it, which is gcc.
file(GLOB objc_include_dirs /usr/lib/gcc/*/*/include)
find_path(OBJC_INCLUDE_DIR objc/objc.h PATHS ${objc_include_dirs} NO_DEFAULT_PATH REQUIRED)
find_path(GNUSTEP_INCLUDE_DIR Foundation/Foundation.h PATHS /usr/include/GNUstep REQUIRED)

# GNUstep with Debian's run time: include paths, definitions, libraries.
# gcc's own include folder must come last: clang's built-in headers take precedence.
add_library(gnustep INTERFACE)
target_compile_options(gnustep INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-runtime=gcc -fconstant-string-class=NSConstantString
    -fexceptions -fobjc-exceptions -fno-strict-aliasing -pthread>)
target_compile_definitions(gnustep INTERFACE
  _NATIVE_OBJC_EXCEPTIONS GNUSTEP GNUSTEP_BASE_LIBRARY=1 GNU_GUI_LIBRARY=1 GNU_RUNTIME=1)
target_compile_options(gnustep INTERFACE
  "SHELL:-isystem ${GNUSTEP_INCLUDE_DIR}" "SHELL:-idirafter ${OBJC_INCLUDE_DIR}")
target_link_libraries(gnustep INTERFACE gnustep-gui gnustep-base objc Threads::Threads)

if(DELVIO_SANITIZE)
  add_compile_options(-fsanitize=${DELVIO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  # The sanitizer library is shared, so that libraries loaded later share it. It is in the
  # compiler's own folder.
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} --print-runtime-dir
                  OUTPUT_VARIABLE sanitizer_dir OUTPUT_STRIP_TRAILING_WHITESPACE)
  add_link_options(-fsanitize=${DELVIO_SANITIZE} -shared-libsan -Wl,-rpath,${sanitizer_dir})
endif()
