# Real X11 windows for tests: a server in memory, a window manager, and a client that sees and acts
# like a user. It uses xcb and not Xlib, so that only the library under test brings Xlib into the
# process.
find_package(X11 REQUIRED COMPONENTS xcb)
find_library(XCB_RES xcb-res REQUIRED)

add_library(test_support STATIC
  capture_stderr.cpp
  child_process.cpp
  os_facts.cpp
  output_file.cpp
  restless_user.cpp
  scoped_variable.cpp
  temporary_folder.cpp
  wayland_server.cpp
  window_manager.cpp
  x_client.cpp
  x_client_hands.cpp
  x_client_pixels.cpp
  x_connection.cpp
  x_resources.cpp
  x_server.cpp)
target_include_directories(test_support PUBLIC ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(test_support PUBLIC GTest::gtest X11::xcb PRIVATE ${XCB_RES} framesink_warnings)

# What SDL and the libraries below it keep, which leak checks must not count.
add_library(foreign_leaks STATIC foreign_leaks.cpp)
target_link_libraries(foreign_leaks PUBLIC test_support SDL2::SDL2 PRIVATE framesink_warnings)

# A program that links it can ask which SDL windows are there.
add_library(sdl_windows OBJECT sdl_windows.cpp)
target_include_directories(sdl_windows PUBLIC ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(sdl_windows PUBLIC framesink_process PRIVATE framesink_warnings)
target_link_options(sdl_windows INTERFACE
  LINKER:--wrap=SDL_CreateWindow LINKER:--wrap=SDL_DestroyWindow)

# Records the SDL calls of a program that links it: those of the code under test and its own.
set(recorded_functions
  CreateMutex CreateRGBSurfaceFrom CreateRenderer CreateTexture CreateThread CreateWindow Delay
  DestroyMutex DestroyRenderer DestroyTexture DestroyWindow DetachThread EnableScreenSaver
  FreeSurface GetError GetWindowFlags GetWindowID GetWindowPixelFormat GetWindowSize Init LockMutex
  LockTexture LogError PollEvent Quit RaiseWindow RenderClear RenderCopy RenderPresent
  RenderSetLogicalSize SetHintWithPriority SetWindowFullscreen SetWindowIcon SetWindowSize
  SetWindowTitle ShowWindow UnlockMutex UnlockTexture WaitThread WasInit)
list(TRANSFORM recorded_functions PREPEND SDL_)
add_library(sdl_recorder OBJECT
  sdl_clock.cpp
  sdl_recorder.cpp
  sdl_recorder_wraps.cpp)
target_link_libraries(sdl_recorder
  PUBLIC foreign_leaks framesink_process test_support
  PRIVATE framesink_warnings)
list(TRANSFORM recorded_functions PREPEND LINKER:--wrap= OUTPUT_VARIABLE wraps)
target_link_options(sdl_recorder INTERFACE ${wraps})
set_target_properties(sdl_recorder PROPERTIES RECORDED_FUNCTIONS "${recorded_functions}")

# The library's interface without windows, for hosts under test.
add_library(stub_framesink MODULE stub_framesink.c)
add_library(stub_without_update MODULE stub_framesink.c)
target_compile_definitions(stub_without_update PRIVATE STUB_WITHOUT_UPDATE)
foreach(stub stub_framesink stub_without_update)
  target_include_directories(${stub} PRIVATE ${CMAKE_SOURCE_DIR}/include)
  target_link_libraries(${stub} PRIVATE framesink_warnings)
endforeach()

add_test_program(support_tests
  LABEL support SECONDS 60
  SOURCES
    capture_stderr_test.cpp
    child_process_test.cpp
    os_facts_test.cpp
    plain_window.cpp
    scoped_variable_test.cpp
    temporary_folder_test.cpp
    wait_until_test.cpp
    x_client_test.cpp
    x_resources_test.cpp
    x_server_test.cpp
  LIBRARIES test_support)
