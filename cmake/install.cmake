# Installation rules for `cmake --install`, by component: library, development, tools, python.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/framesink)

# The library finds the stand-in pixkit in its own folder. A host's pixkit earlier on the loader's path replaces it.
set_target_properties(framesink PROPERTIES INSTALL_RPATH $ORIGIN)
install(TARGETS framesink
  EXPORT framesinkTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(FILES include/framesink/framesink.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/framesink COMPONENT development)
if(NOT FRAMESINK_PIXKIT)
  install(TARGETS pixkit LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library)
  install(FILES pixkit/include/pixkit/pixkit.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/pixkit COMPONENT development)
endif()

install(EXPORT framesinkTargets
  NAMESPACE framesink:: DESTINATION ${package_folder} COMPONENT development)
configure_package_config_file(packaging/framesinkConfig.cmake.in
  ${CMAKE_BINARY_DIR}/framesinkConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/framesinkConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(
  FILES ${CMAKE_BINARY_DIR}/framesinkConfig.cmake ${CMAKE_BINARY_DIR}/framesinkConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT development)
# The path to the prefix is relative, so that an installed tree can be moved.
file(RELATIVE_PATH pc_to_prefix /p/${CMAKE_INSTALL_LIBDIR}/pkgconfig /p)
configure_file(packaging/framesink.pc.in ${CMAKE_BINARY_DIR}/framesink.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/framesink.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(FRAMESINK_PLAY)
  install(TARGETS framesink-play RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  set(completion_folder tools/framesink-play/completion)
  install(FILES ${completion_folder}/framesink-play.bash RENAME framesink-play
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions COMPONENT tools)
  install(FILES ${completion_folder}/_framesink-play
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/vendor-completions COMPONENT tools)
endif()

# The Python package needs no build. Debian's Python searches this folder if the prefix is /usr.
set(python_folder lib/python3/dist-packages)
install(DIRECTORY bindings/python/framesink DESTINATION ${python_folder} COMPONENT python
  PATTERN __pycache__ EXCLUDE)
# pip and importlib.metadata find the package by this file.
configure_file(bindings/python/egg-info.in ${CMAKE_BINARY_DIR}/framesink.egg-info @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/framesink.egg-info
  DESTINATION ${python_folder} RENAME framesink-${PROJECT_VERSION}.egg-info COMPONENT python)
