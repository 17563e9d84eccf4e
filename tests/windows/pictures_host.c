/* pictures_host LIBRARY FOLDER WIDTH HEIGHT SYNCHRONOUS: shows each kind of frame with each sample
 * type in a window of its own, until the user has closed them all. FOLDER has a file with the
 * planes for each window, under the window's name. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "host.h"

enum { KINDS = 3, TYPES = 9, COLUMNS = 7, SPACE = 20, TITLE_SPACE = 60 };

static const char* const kindNames[KINDS] = {"rgb", "intensity", "ycbcr"};
static const size_t sampleBytes[TYPES] = {8, 4, 1, 1, 2, 2, 4, 4, 1};

typedef struct Window {
  char name[32];
  void* block;
  uint8_t* planes[3];
} Window;

static InputDescription describe(int kind, uint32_t type, uint32_t width, uint32_t height) {
  InputDescription description = {.valid = 1,
                                  .inputCount = kind == 1 ? 1 : 3,
                                  .componentCount = kind == 1 ? 1 : 3,
                                  .dataType = type,
                                  .layout = 1};
  if (kind == 2) memcpy(description.fourcc, "YUY2", 4);
  for (int plane = 0; plane < (kind == 1 ? 1 : 3); ++plane) {
    description.widths[plane] = kind == 2 && plane > 0 ? width / 2 : width;
    description.heights[plane] = height;
  }
  return description;
}

static void readPlanes(Window* window, const char* folder, const InputDescription* description) {
  char path[1024];
  snprintf(path, sizeof path, "%s/%s", folder, window->name);
  FILE* const file = fopen(path, "rb");
  CHECK(file != NULL);
  for (int plane = 0; plane < 3; ++plane) {
    const size_t bytes = sampleBytes[description->dataType] * description->widths[plane] *
                         description->heights[plane];
    window->planes[plane] = bytes == 0 ? NULL : malloc(bytes);
    CHECK(fread(window->planes[plane], 1, bytes, file) == bytes);
  }
  CHECK(fgetc(file) == EOF);
  fclose(file);
}

static void open(const Library* library, Window* window, char** arguments, int number) {
  const uint32_t width = (uint32_t)atoi(arguments[3]);
  const uint32_t height = (uint32_t)atoi(arguments[4]);
  const int kind = number / TYPES;
  const uint32_t type = (uint32_t)(number % TYPES);
  const InputDescription description = describe(kind, type, width, height);
  const uint32_t x = (uint32_t)(number % COLUMNS) * (width + SPACE);
  const uint32_t y = (uint32_t)(number / COLUMNS) * (height + TITLE_SPACE);
  snprintf(window->name, sizeof window->name, "%s-%u", kindNames[kind], type);
  readPlanes(window, arguments[2], &description);
  window->block = library->create(NULL, 0, window->name, window->name, 0, &description, 1, x, y, 0,
                                  0, 0, 0, 0, arguments[5][0] == '1');
  CHECK(window->block != NULL);
}

int main(int count, char** arguments) {
  static Window windows[KINDS * TYPES];
  CHECK(count == 6);
  Library library = loadLibrary(arguments[1]);
  for (int i = 0; i < KINDS * TYPES; ++i) open(&library, &windows[i], arguments, i);
  for (int isAnyOpen = 1; isAnyOpen;) {
    isAnyOpen = 0;
    for (int i = 0; i < KINDS * TYPES; ++i) {
      const Window* const window = &windows[i];
      if (!library.isOpen(window->name)) continue;
      isAnyOpen = 1;
      library.update(window->block, NULL, window->planes[0], window->planes[1], window->planes[2],
                     FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE);
    }
    sleepMilliseconds(1);
  }
  for (int i = 0; i < KINDS * TYPES; ++i) library.destroy(windows[i].block);
  unloadLibrary(&library);
  CHECK(isUnloaded("framesink"));
  return 0;
}
