# SPDX-License-Identifier: MIT

# The installed tree: the libraries, the public headers, a CMake package and pkg-config files. Nothing in it names
# the prefix that it was installed to, so the whole folder may be moved.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KXFoundation)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_dir} /)

# kx_install_library(<target> <Foundation|UI|Testing> <pkg-config name> <description> <pkg-config names it stands on>)
function(kx_install_library target name pc_name description requires)
  install(TARGETS ${target} EXPORT ${target}Targets COMPONENT ${name}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(EXPORT ${target}Targets NAMESPACE KXFoundation:: DESTINATION ${package_dir} COMPONENT ${name})

  # A static library hands on what it stands on; a shared one keeps that to itself.
  get_property(packages GLOBAL PROPERTY KX_PACKAGES_${name})
  get_property(plain GLOBAL PROPERTY KX_PLAIN_LIBRARIES_${name})
  get_property(symbols GLOBAL PROPERTY KX_KEPT_SYMBOLS_${name})
  set(libs -l${target})
  if(NOT BUILD_SHARED_LIBS)
    list(APPEND requires ${packages})
    list(TRANSFORM plain PREPEND "-l")
    list(TRANSFORM symbols PREPEND "-Wl,-u,")
    list(APPEND libs ${plain} ${symbols} -lstdc++)
  endif()
  list(JOIN requires " " requires)
  list(JOIN libs " " libs)
  configure_file(packaging/library.pc.in ${PROJECT_BINARY_DIR}/${pc_name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc_name}.pc DESTINATION ${pkgconfig_dir} COMPONENT ${name})
endfunction()

kx_install_library(KXFoundation Foundation kxfoundation "Services shared by desktop applications" "")
if(TARGET KXFoundationUI)
  kx_install_library(KXFoundationUI UI kxfoundation-ui "Pictures and views shared by desktop applications" kxfoundation)
  kx_install_library(KXFoundationTesting Testing kxfoundation-testing "Tests of desktop applications without a display"
    kxfoundation-ui)
endif()

install(DIRECTORY KXFoundation/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KXFoundation
  COMPONENT Foundation FILES_MATCHING PATTERN "*.h" PATTERN "Modules" EXCLUDE PATTERN "Testing" EXCLUDE)
install(DIRECTORY KXFoundation/Testing DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KXFoundation
  COMPONENT Testing FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/include/KXFoundation/Version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KXFoundation COMPONENT Foundation)

get_property(foundation_packages GLOBAL PROPERTY KX_PACKAGES_Foundation)
get_property(ui_packages GLOBAL PROPERTY KX_PACKAGES_UI)
configure_package_config_file(packaging/KXFoundationConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KXFoundationConfig.cmake INSTALL_DESTINATION ${package_dir}
  PATH_VARS CMAKE_INSTALL_BINDIR)
set(compatible SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatible SameMinorVersion)
endif()
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KXFoundationConfigVersion.cmake
  COMPATIBILITY ${compatible})
install(FILES
  ${PROJECT_BINARY_DIR}/KXFoundationConfig.cmake
  ${PROJECT_BINARY_DIR}/KXFoundationConfigVersion.cmake
  cmake/KXBundle.cmake
  DESTINATION ${package_dir} COMPONENT Foundation)
