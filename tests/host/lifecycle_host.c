/* lifecycle_host LIBRARY: the whole life of two blocks and their windows, threaded and synchronous.
 * The test closes each window once as a user would, after it has looked at it. */
#include <locale.h>
#include <string.h>

#include "host.h"

static void checkTexts(const Library* library) {
  CHECK(strlen(libraryText(library, "framesink_version")) >= 3);
  CHECK(strlen(libraryText(library, "framesink_build_date")) == 11);
  CHECK(strcmp(libraryText(library, "framesink_relative_path"), "bin\\win64\\framesink.dll") == 0);
}

static void checkRejection(const Library* library) {
  InputDescription description = describeFrames();
  description.dataType = 9;
  char error[FRAMESINK_ERROR_BYTES] = "untouched";
  CHECK(library->create(error, 0, "rejected", "rejected", 0, &description, 1, 0, 0, 0, 0, 0, 0, 0,
                        0) == NULL);
  CHECK(strcmp(error, "Unsupported video data type") == 0);
  CHECK(!library->isOpen("rejected"));
}

typedef struct PosSize {
  int32_t position[2];
  int32_t size[2];
} PosSize;

static int hasPosSize(const Library* library, const char* name, PosSize expected) {
  PosSize actual = {{11, 22}, {33, 44}};
  library->getPosSize(name, actual.position, actual.size);
  return memcmp(&actual, &expected, sizeof actual) == 0;
}

static int isUnknown(const Library* library, const char* name) {
  const PosSize untouched = {{11, 22}, {33, 44}};
  return hasPosSize(library, name, untouched) && !library->isOpen(name);
}

static int isClosed(const Library* library, const char* name) {
  const PosSize minusTwo = {{-2, -2}, {-2, -2}};
  return hasPosSize(library, name, minusTwo) && !library->isOpen(name);
}

/* One run: shows frames until the user closes the window, delivers one more, and ends. */
static void run(const Library* library, void* block, const char* name) {
  const PosSize place = {{100, 120}, {FRAME_WIDTH, FRAME_HEIGHT}};
  CHECK(library->isOpen(name));
  CHECK(hasPosSize(library, name, place));
  say(name);
  showUntilClosed(library, block, name, 0x3060C0);
  CHECK(isClosed(library, name));
  Frame frame;
  fillFrame(&frame, 0xFF0000);
  updateBlock(library, block, &frame);
  library->outputs(block);
  library->terminate(block);
  CHECK(isClosed(library, name));
}

/* Opens the window again by name; it must then outlive the block. */
static void reopen(const Library* library, void* block, const char* name) {
  const uint32_t position[2] = {300, 200};
  const uint32_t size[2] = {222, 111};
  const PosSize place = {{300, 200}, {222, 111}};
  library->createWindow("unknown", 0, position, size, 1);
  CHECK(isUnknown(library, "unknown"));
  library->createWindow(name, 0, position, size, 1);
  CHECK(hasPosSize(library, name, place));
  library->createWindow(name, 0, position, size, 1);
  library->terminate(block);
  library->destroy(block);
  CHECK(library->isOpen(name));
}

static void renameAndForget(const Library* library, const char* name) {
  library->rename(name, "re\nnamed", "re\ntitled");
  CHECK(isUnknown(library, name));
  CHECK(library->isOpen("re named"));
  library->destroyWindow("re\nnamed");
  CHECK(isUnknown(library, "re named"));
  library->destroyWindow("re named");
}

static void live(const Library* library, const char* name, uint8_t synchronous) {
  void* const block =
      createBlock(library, (WindowRequest){name, 100, 120, /*open=*/1, synchronous});
  run(library, block, name);
  reopen(library, block, name);
  renameAndForget(library, name);
}

int main(int count, char** arguments) {
  CHECK(count == 2);
  CHECK(setlocale(LC_ALL, HOST_LOCALE) != NULL);
  char locale[256];
  strncpy(locale, setlocale(LC_ALL, NULL), sizeof locale - 1);
  locale[sizeof locale - 1] = '\0';
  const int threads = countThreads();

  Library library = loadLibrary(arguments[1]);
  checkTexts(&library);
  checkRejection(&library);
  library.destroy(NULL);
  live(&library, "threaded", 0);
  live(&library, "synchronous", 1);
  CHECK(strcmp(setlocale(LC_ALL, NULL), locale) == 0);
  checkForLeaks();
  unloadLibrary(&library);

  CHECK(strcmp(setlocale(LC_ALL, NULL), locale) == 0);
  CHECK(isUnloaded("framesink"));
  CHECK(isUnloaded("SDL2"));
  CHECK(areThreadsGone(threads));
  return 0;
}
