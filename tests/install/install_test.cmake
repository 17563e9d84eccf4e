# Installs BUILD into SCRATCH, moves the tree, builds the consumer against it with CMake's package and with
# pkg-config, and runs both.
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE out)
  set(out "${out}" PARENT_SCOPE)
endfunction()

# Without LD_LIBRARY_PATH, the program finds the library only by the path it was linked with.
function(expect_version program)
  run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH SDL_VIDEODRIVER=dummy ${program})
  if(NOT out STREQUAL "framesink ${VERSION}, no error, window open: 1\n")
    message(FATAL_ERROR "${program} printed: ${out}")
  endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
foreach(component library development tools)
  run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/first --component ${component})
endforeach()
file(RENAME ${SCRATCH}/first ${SCRATCH}/installed)

run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${SCRATCH}/consumer -G ${GENERATOR}
  -DCMAKE_PREFIX_PATH=${SCRATCH}/installed)
run(${CMAKE_COMMAND} --build ${SCRATCH}/consumer)
expect_version(${SCRATCH}/consumer/consumer_c)
expect_version(${SCRATCH}/consumer/consumer_cxx)

file(GLOB_RECURSE pc ${SCRATCH}/installed/*/framesink.pc)
get_filename_component(pc_folder ${pc} DIRECTORY)
get_filename_component(lib_folder ${pc_folder} DIRECTORY)
run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_folder} pkg-config --modversion framesink)
if(NOT out STREQUAL "${VERSION}\n")
  message(FATAL_ERROR "pkg-config reports version ${out}")
endif()
run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_folder} pkg-config --cflags --libs framesink)
separate_arguments(flags UNIX_COMMAND "${out}")
run(gcc ${CONSUMER}/consumer.c -o ${SCRATCH}/by_pkg_config ${flags} -Wl,-rpath,${lib_folder})
expect_version(${SCRATCH}/by_pkg_config)

run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH SDL_VIDEODRIVER=dummy
  ${SCRATCH}/installed/bin/framesink-play --duration 0.2)
