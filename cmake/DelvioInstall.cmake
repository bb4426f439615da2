# What `cmake --install` puts where. The programs find their parts by the places of the libraries,
# so an installed tree may be moved as a whole.
include(GNUInstallDirs)

set(DELVIO_LIBRARY_FOLDER ${CMAKE_INSTALL_LIBDIR}/delvio)
set(DELVIO_PROGRAM_FOLDER ${CMAKE_INSTALL_LIBEXECDIR}/delvio)

# The run-time search path of programs in `folder`, as seen from themselves.
function(delvio_search_path variable folder)
  set(root /prefix)
  file(RELATIVE_PATH way ${root}/${folder} ${root}/${DELVIO_LIBRARY_FOLDER})
  string(REGEX REPLACE "/$" "" way "${way}")
  set(${variable} "\$ORIGIN/${way}" PARENT_SCOPE)
endfunction()

# Installs programs and libraries into `folder`: delvio_install_parts(FOLDER TARGET...)
function(delvio_install_parts folder)
  delvio_search_path(search_path ${folder})
  set_target_properties(${ARGN} PROPERTIES INSTALL_RPATH "${search_path}")
  install(TARGETS ${ARGN} RUNTIME DESTINATION ${folder} LIBRARY DESTINATION ${folder})
endfunction()

# Installs a bundle: its program and its Resources.
function(delvio_install_bundle target)
  delvio_install_parts(${DELVIO_LIBRARY_FOLDER}/${target}.bundle ${target})
  install(DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${target}.bundle/Resources
          DESTINATION ${DELVIO_LIBRARY_FOLDER}/${target}.bundle)
endfunction()
