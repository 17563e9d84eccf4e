#include "host.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* ---- Checks ---- */

void checkThat(int holds, const char* condition, const char* file, int line) {
  if (holds) return;
  fprintf(stderr, "%s:%d: not true: %s\n", file, line, condition);
  fflush(stderr);
  _Exit(3);
}

void say(const char* text) {
  puts(text);
  fflush(stdout);
}

/* ---- The library ---- */

/* C has no conversion from an object pointer to a function pointer, so this copies the bytes. */
static void find(const Library* library, const char* name, void* function) {
  void* const address = findSymbol(library->handle, name);
  CHECK(address != NULL);
  memcpy(function, &address, sizeof address);
}

Library loadLibrary(const char* path) {
  Library library = {.handle = openLibrary(path)};
  CHECK(library.handle != NULL);
  find(&library, "libCreate", &library.create);
  find(&library, "libStart", &library.start);
  find(&library, "libUpdate", &library.update);
  find(&library, "libOutputs", &library.outputs);
  find(&library, "libTerminate", &library.terminate);
  find(&library, "libDestroy", &library.destroy);
  find(&library, "createVideoWindow", &library.createWindow);
  find(&library, "destroyVideoWindow", &library.destroyWindow);
  find(&library, "getWindowPosSize", &library.getPosSize);
  find(&library, "isPlayerOpen", &library.isOpen);
  find(&library, "renameVideoWindow", &library.rename);
  return library;
}

void unloadLibrary(Library* library) {
  closeLibrary(library->handle);
  memset(library, 0, sizeof *library);
}

const char* libraryText(const Library* library, const char* name) {
  const char* const* const text = findSymbol(library->handle, name);
  CHECK(text != NULL);
  return *text;
}

/* ---- Frames and blocks ---- */

void fillFrame(Frame* frame, uint32_t colour) {
  for (int plane = 0; plane < 3; ++plane) {
    memset(frame->planes[plane], (int)(colour >> (16 - 8 * plane) & 0xFF), FRAME_SAMPLES);
  }
}

InputDescription describeFrames(void) {
  InputDescription description = {
      .valid = 1, .inputCount = 3, .componentCount = 3, .dataType = FRAMESINK_UINT8, .layout = 1};
  for (int plane = 0; plane < 3; ++plane) {
    description.widths[plane] = FRAME_WIDTH;
    description.heights[plane] = FRAME_HEIGHT;
  }
  return description;
}

void* createBlock(const Library* library, WindowRequest request) {
  const InputDescription description = describeFrames();
  char error[FRAMESINK_ERROR_BYTES] = "untouched";
  void* const block =
      library->create(error, 0, request.name, request.name, 0, &description, request.open,
                      request.x, request.y, 0, 0, 0, 0, 0, request.synchronous);
  CHECK(block != NULL);
  library->start(block, error);
  CHECK(strcmp(error, "untouched") == 0);
  return block;
}

void updateBlock(const Library* library, void* block, const Frame* frame) {
  char error[FRAMESINK_ERROR_BYTES] = "untouched";
  library->update(block, error, frame->planes[0], frame->planes[1], frame->planes[2],
                  FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE);
  CHECK(strcmp(error, "untouched") == 0);
}

void showUntilClosed(const Library* library, void* block, const char* name, uint32_t colour) {
  Frame frame;
  fillFrame(&frame, colour);
  while (library->isOpen(name)) {
    updateBlock(library, block, &frame);
    sleepMilliseconds(1);
  }
}
