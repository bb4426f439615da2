# What `cmake --install` puts where. The programs find their parts by the places of the libraries,
# so an installed tree may be moved as a whole.
# The private libraries have a folder of their own in the folder of this machine's libraries.
if(CMAKE_LIBRARY_ARCHITECTURE)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Folder of libraries")
endif()
include(GNUInstallDirs)

set(DELVIO_LIBRARY_FOLDER ${CMAKE_INSTALL_LIBDIR}/delvio)
set(DELVIO_PROGRAM_FOLDER ${CMAKE_INSTALL_LIBEXECDIR}/delvio)

# The relative path from one installed folder to another.
function(delvio_way variable from to)
  file(RELATIVE_PATH way /prefix/${from} /prefix/${to})
  string(REGEX REPLACE "/$" "" way "${way}")
  set(${variable} "${way}" PARENT_SCOPE)
endfunction()

# Installs programs and libraries into `folder`: delvio_install_parts(FOLDER TARGET...)
function(delvio_install_parts folder)
  delvio_way(way ${folder} ${DELVIO_LIBRARY_FOLDER})
  set_target_properties(${ARGN} PROPERTIES INSTALL_RPATH "\$ORIGIN/${way}")
  install(TARGETS ${ARGN} RUNTIME DESTINATION ${folder} LIBRARY DESTINATION ${folder})
endfunction()

# Installs a bundle: its program and its Resources.
function(delvio_install_bundle target)
  delvio_install_parts(${DELVIO_LIBRARY_FOLDER}/${target}.bundle ${target})
  install(DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${target}.bundle/Resources
          DESTINATION ${DELVIO_LIBRARY_FOLDER}/${target}.bundle)
endfunction()
