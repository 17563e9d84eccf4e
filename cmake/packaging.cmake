# Makes one Debian package per component of cmake/install.cmake, with CPack. `./dev package` builds and checks them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME framesink)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "framesink maintainers <maintainers@framesink.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_COMPONENTS_ALL)

# debian_package(COMPONENT NAME SECTION SUMMARY DESCRIPTION): sets the names and texts of a component's package and
# installs the documents that every package includes.
function(debian_package component name section summary description)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  set(folder ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name})
  install(FILES packaging/copyright DESTINATION ${folder} COMPONENT ${component})
  install(FILES ${CMAKE_BINARY_DIR}/changelog.gz ${CMAKE_BINARY_DIR}/changelog.Debian.gz
    DESTINATION ${folder} COMPONENT ${component})
  if(EXISTS ${CMAKE_SOURCE_DIR}/packaging/lintian/${name})
    install(FILES packaging/lintian/${name}
      DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides COMPONENT ${component})
  endif()
endfunction()

# zip(FILE NAME): compresses FILE without a timestamp, so that the result is always the same.
function(zip file name)
  execute_process(COMMAND gzip -9n INPUT_FILE ${CMAKE_SOURCE_DIR}/${file}
    OUTPUT_FILE ${CMAKE_BINARY_DIR}/${name}.gz COMMAND_ERROR_IS_FATAL ANY)
endfunction()
zip(CHANGELOG.md changelog)
zip(packaging/changelog changelog.Debian)

debian_package(library libframesink1 libs "live windows for the frames of a running model"
"A host loads one library, calls eleven C functions and hands over planes
of samples in any of nine types. The library scales, converts and displays
them on its own thread, and the model never waits for a window.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
# The trigger updates the loader's cache; shlibs is the dependency for packages of hosts that link the library.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${CMAKE_SOURCE_DIR}/packaging/triggers ${CMAKE_SOURCE_DIR}/packaging/shlibs)

debian_package(development libframesink-dev libdevel "live windows for running models (development files)"
"Header, CMake package and pkg-config file of framesink, for hosts that
link the library or load it at run time.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libframesink1 (= ${PROJECT_VERSION}-1)")

debian_package(tools framesink-tools video "live windows for running models (player)"
"framesink-play shows videos, images, raw samples or a built-in model
through the framesink library, and diagnoses windows that do not appear.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libframesink1 (= ${PROJECT_VERSION}-1)")

debian_package(python python3-framesink python "live windows for running models (Python)"
"The Python package framesink shows the NumPy arrays of a running model
in live windows.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
  "python3 (>= 3.11), python3-numpy, libframesink1 (= ${PROJECT_VERSION}-1)")
# postinst compiles the Python files, and prerm removes the compiled files.
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
  ${CMAKE_SOURCE_DIR}/packaging/python/postinst ${CMAKE_SOURCE_DIR}/packaging/python/prerm)

include(CPack)
