# SPDX-License-Identifier: MIT

# kx_bundle(<target> <directory> [NO_INSTALL]): the directory is the program's bundle (Info.plist, <code>.lproj/, pictures).
#
# In the build tree it is copied to where the program looks for it: `Resources/` beside the program or, where programs
# share a `bin/` folder, `../share/<program>/` as after installation. The copy follows the directory: a changed, new or
# removed file renews it. At installation it goes to <datadir>/<program>/, unless NO_INSTALL is given; the program
# itself is installed by install(TARGETS <target>).
function(kx_bundle target directory)
  include(GNUInstallDirs)
  get_filename_component(directory ${directory} ABSOLUTE)
  if(NOT TARGET ${target})
    message(FATAL_ERROR "kx_bundle: there is no target ${target}")
  elseif(NOT IS_DIRECTORY ${directory})
    message(FATAL_ERROR "kx_bundle: there is no directory ${directory}")
  endif()
  get_target_property(place ${target} RUNTIME_OUTPUT_DIRECTORY)
  if(NOT place)
    set(place ${CMAKE_CURRENT_BINARY_DIR})
  endif()
  if(place MATCHES "/bin$")
    set(copy ${place}/../share/${target})
  else()
    set(copy ${place}/Resources)
  endif()

  file(GLOB_RECURSE files CONFIGURE_DEPENDS ${directory}/*)
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${target}.bundle)
  # The list of names is part of what the stamp depends on, so that a removed file renews the copy too.
  file(GENERATE OUTPUT ${stamp}.names CONTENT "${files}")
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${copy}
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${directory} ${copy}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${files} ${stamp}.names
    COMMENT "Bundle of ${target}")
  add_custom_target(${target}_bundle DEPENDS ${stamp})
  add_dependencies(${target} ${target}_bundle)
  if(NOT "NO_INSTALL" IN_LIST ARGN)
    install(DIRECTORY ${directory}/ DESTINATION ${CMAKE_INSTALL_DATADIR}/${target})
  endif()
endfunction()
