# The Debian package, which script/package makes from a build.
find_program(GZIP gzip REQUIRED)
set(documents ${CMAKE_INSTALL_DATADIR}/doc/delvio)
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog)
configure_file(debian/changelog.in ${changelog} @ONLY)
add_custom_command(OUTPUT ${changelog}.gz
  COMMAND ${GZIP} --best --no-name --keep --force ${changelog} DEPENDS ${changelog} VERBATIM)
add_custom_target(debian_changelog ALL DEPENDS ${changelog}.gz)
add_dependencies(parts_to_install debian_changelog)
install(FILES debian/copyright ${changelog}.gz DESTINATION ${documents})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME delvio)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES TRUE)
# With this generator, CPack builds nothing itself: the script has built what is installed, and the
# tests need not be built for a package.
set(CPACK_CMAKE_GENERATOR Ninja)
set(CPACK_INSTALL_CMAKE_PROJECTS ${PROJECT_BINARY_DIR} Delvio ALL /)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The developers of Delvio <delvio@delvio.org>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "contextual menu for files that browses the disk
Right-click a file or a folder, and its menu browses the disk: submenus list
folders level by level, without opening a window. Pick a file and it opens.
Select several files, and move, copy or link them into any folder of the menu.
.
Delvio Settings, in the menu of programs, puts Delvio into the menus of the
file managers Caja, Dolphin, GWorkspace, Nautilus, Nemo, PCManFM, PCManFM-Qt
and Thunar.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "gnustep-base-runtime, gnustep-gui-runtime, gnustep-back0.29-cairo, shared-mime-info")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "bubblewrap, adwaita-icon-theme, fonts-noto-core | fonts-dejavu-core, librsvg2-common, xvfb, xauth, xwayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
include(CPack)
