# Target windows_zip: packs everything that a host on Windows needs into one file.
set(zip_folder ${CMAKE_BINARY_DIR}/framesink-${PROJECT_VERSION}-win64)
set(zip_file ${CMAKE_BINARY_DIR}/framesink-${PROJECT_VERSION}-win64.zip)
configure_file(${CMAKE_SOURCE_DIR}/cmake/windows_readme.txt.in windows_readme.txt @ONLY NEWLINE_STYLE DOS)
# The licences of the included software require these copies of their texts.
file(GLOB sdl_source ${FRAMESINK_WINDOWS_BUILD}/packages/sources/libsdl2-*/LICENSE.txt)
file(GLOB highway_source ${FRAMESINK_WINDOWS_BUILD}/packages/sources/highway-*/LICENSE)
file(GLOB cli11_source ${FRAMESINK_WINDOWS_BUILD}/packages/sources/cli11-*/LICENSE)
set(mingw_licence /usr/share/doc/mingw-w64-x86-64-dev/copyright)
set(gcc_licence /usr/share/doc/gcc-mingw-w64-x86-64-posix-runtime/copyright)
add_custom_target(windows_zip
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${zip_folder} ${zip_file}
  COMMAND ${CMAKE_COMMAND} -E make_directory
    ${zip_folder}/bin ${zip_folder}/lib ${zip_folder}/include/framesink ${zip_folder}/include/pixkit ${zip_folder}/licences
  COMMAND ${CMAKE_COMMAND} -E copy
    $<TARGET_FILE:framesink> $<TARGET_FILE:pixkit> ${sdl_dll} $<TARGET_FILE:framesink-play> ${zip_folder}/bin
  COMMAND ${CMAKE_STRIP} --strip-unneeded
    ${zip_folder}/bin/framesink.dll ${zip_folder}/bin/pixkit.dll ${zip_folder}/bin/SDL2.dll
    ${zip_folder}/bin/framesink-play.exe
  COMMAND ${CMAKE_COMMAND} -E copy
    $<TARGET_LINKER_FILE:framesink> $<TARGET_LINKER_FILE:pixkit> ${CMAKE_SOURCE_DIR}/cmake/framesink.def
    ${zip_folder}/lib
  COMMAND ${CMAKE_COMMAND} -E copy
    ${CMAKE_SOURCE_DIR}/include/framesink/framesink.h ${zip_folder}/include/framesink
  COMMAND ${CMAKE_COMMAND} -E copy
    ${CMAKE_SOURCE_DIR}/pixkit/include/pixkit/pixkit.h ${zip_folder}/include/pixkit
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_BINARY_DIR}/windows_readme.txt ${zip_folder}/README.txt
  COMMAND ${CMAKE_COMMAND} -E copy ${sdl_source} ${zip_folder}/licences/SDL.txt
  COMMAND ${CMAKE_COMMAND} -E copy ${highway_source} ${zip_folder}/licences/Highway.txt
  COMMAND ${CMAKE_COMMAND} -E copy ${cli11_source} ${zip_folder}/licences/CLI11.txt
  COMMAND ${CMAKE_COMMAND} -E copy ${mingw_licence} ${zip_folder}/licences/mingw-w64.txt
  COMMAND ${CMAKE_COMMAND} -E copy ${gcc_licence} ${zip_folder}/licences/GCC.txt
  COMMAND ${CMAKE_COMMAND} -E chdir ${CMAKE_BINARY_DIR}
    ${CMAKE_COMMAND} -E tar cf ${zip_file} --format=zip framesink-${PROJECT_VERSION}-win64
  DEPENDS framesink pixkit framesink-play
  VERBATIM)
