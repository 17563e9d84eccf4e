/* framesink: shows the frames of a running model in live windows.
 *
 * The one header for hosts; valid C11 and C++. Load libframesink.so (framesink.dll on Windows) with
 * the system's loader or link it; either way these eleven functions and three strings are all there
 * is.
 *
 * Conventions, said once:
 *
 *  1. Threads. Call one export at a time; which thread makes the call does not matter for threaded
 *     windows. The windows of a synchronous block belong to the thread that created the block: make
 *     every call that concerns them there. Nothing ever calls back into the host.
 *  2. Blocking. Unless a function says otherwise it does not wait for drawing. "Waits for the
 *     window" means: until the display thread has made the window, normally a few milliseconds,
 *     looked for every 2 ms. It ends at once when that window can no longer come (closed by the
 *     user, no display thread, library leaving). A window manager that does not answer while a
 *     window is made holds up the functions that wait for a window, open, raise or rename one, and
 *     no others.
 *  3. Ownership. Every pointer passed in is read, or written, during the call only. Strings are
 *     zero-terminated and copied; a null string counts as an empty one. The one thing handed out is
 *     the block handle, which goes back through libDestroy.
 *  4. Names. Windows are known by name. In names and titles a line feed counts as a blank; names
 *     compare case-sensitively.
 *  5. Flags are bytes: 0 is false, anything else true.
 *  6. Sizes are in pixels, positions in screen coordinates. FRAMESINK_POSITION_UNDEFINED as x or y
 *     lets the system place the window; other positions are clamped to -10000..10000, window sizes
 *     to 1..20000.
 *  7. Errors. Only libCreate, libStart and libUpdate report, into a buffer of at least
 *     FRAMESINK_ERROR_BYTES bytes that stays untouched when there is nothing to report. At most
 *     FRAMESINK_ERROR_BYTES bytes are written; a text of that length or more arrives without its
 *     terminating zero. A null buffer drops the text. Trouble with the display is told on standard
 *     error and never disturbs the model.
 *  8. Memory. When memory runs out libCreate lets std::bad_alloc pass to the host and leaves
 *     nothing behind.
 *  9. Lifetime. Windows belong to the library: they outlive blocks and runs, and close when the
 *     user closes them, by destroyVideoWindow, or when the library is unloaded. Unloading and
 *     exiting close everything; they wait at most 20 s for a display that no longer answers. Where
 *     SDL draws through OpenGL, as on Wayland, a library that has opened a threaded window stays
 *     loaded, and its windows open, to the end of the process.
 * 10. After the library's own end (in exit handlers that run later) every function returns at once
 *     and does nothing.
 */
#ifndef FRAMESINK_FRAMESINK_H
#define FRAMESINK_FRAMESINK_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32) && defined(FRAMESINK_BUILDING)
#define FRAMESINK_API
#elif defined(_WIN32)
#define FRAMESINK_API __declspec(dllimport)
#elif defined(__GNUC__)
#define FRAMESINK_API __attribute__((visibility("default")))
#else
#define FRAMESINK_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Size in bytes of the host's error buffer. */
#define FRAMESINK_ERROR_BYTES 1024

/* As width or height of libUpdate: the size given to libCreate. */
#define FRAMESINK_CONFIGURED_SIZE 0xFFFFFFFFu

/* As x or y of a window: the system chooses (SDL_WINDOWPOS_UNDEFINED). */
#define FRAMESINK_POSITION_UNDEFINED 0x1FFF0000u

/* The sample types of input planes (InputDescription.dataType), one sample each. Nominal ranges
 * come from the host's media library, pixkit; the stand-in's are given here. Samples are scaled so
 * that the range's minimum becomes 0 and its maximum 255; uint8 samples are shown as they are. */
enum FramesinkDataType {
  FRAMESINK_DOUBLE = 0, /* 64-bit float, 0..1 */
  FRAMESINK_SINGLE = 1, /* 32-bit float, 0..1 */
  FRAMESINK_INT8 = 2,   /* -128..127 */
  FRAMESINK_UINT8 = 3,  /* 0..255 */
  FRAMESINK_INT16 = 4,  /* -32768..32767 */
  FRAMESINK_UINT16 = 5, /* 0..65535 */
  FRAMESINK_INT32 = 6,  /* -2147483648..2147483647 */
  FRAMESINK_UINT32 = 7, /* 0..4294967295 */
  FRAMESINK_BOOLEAN = 8 /* one byte, 0..1 */
};

/* Describes the planes of every frame of a block. Copied whole by libCreate.
 *
 * What the planes hold follows from three fields: inputCount 1 with componentCount 1 is one
 * intensity plane; otherwise a fourcc of "YUY2" means YCbCr 4:2:2 (Y, then Cb and Cr of half the
 * width, BT.601 studio range); otherwise the planes are red, green and blue. */
typedef struct InputDescription {
  uint8_t valid;           /* 0: every frame of the block is ignored */
  uint8_t reserved1[23];   /* not read */
  char fourcc[4];          /* "YUY2" or anything else; no terminator */
  uint32_t inputCount;     /* plane buffers per frame; 1: all planes one after another in plane1 */
  uint32_t componentCount; /* colour components per pixel: 1 or 3 */
  uint32_t widths[3];      /* columns of planes 1 to 3, pixels; widths[0] is the frame's width */
  uint32_t heights[3];     /* rows of planes 1 to 3, pixels; heights[0] is the frame's height */
  uint32_t dataType;       /* a FramesinkDataType */
  int32_t layout;          /* non-zero: planes are column-major (row r, column c is sample
                              r + c x height), the form that windows show correctly; 0 selects each
                              conversion's second path, see docs/integrators.md */
  uint8_t reserved2[12];   /* not read */
  uint8_t reserved3[8];    /* not read */
} InputDescription;

/* The record is an interface at the level of bytes. */
#define FRAMESINK_ASSERT_OFFSET(field, offset) \
  static_assert(offsetof(InputDescription, field) == (offset), "InputDescription." #field)
FRAMESINK_ASSERT_OFFSET(valid, 0);
FRAMESINK_ASSERT_OFFSET(reserved1, 1);
FRAMESINK_ASSERT_OFFSET(fourcc, 24);
FRAMESINK_ASSERT_OFFSET(inputCount, 28);
FRAMESINK_ASSERT_OFFSET(componentCount, 32);
FRAMESINK_ASSERT_OFFSET(widths, 36);
FRAMESINK_ASSERT_OFFSET(heights, 48);
FRAMESINK_ASSERT_OFFSET(dataType, 60);
FRAMESINK_ASSERT_OFFSET(layout, 64);
FRAMESINK_ASSERT_OFFSET(reserved2, 68);
FRAMESINK_ASSERT_OFFSET(reserved3, 80);
#undef FRAMESINK_ASSERT_OFFSET
static_assert(sizeof(InputDescription) == 88, "InputDescription is 88 bytes");

/* ---- The life of a block --------------------------------------------------------------------- */

/* Creates a block and registers its window under playerName; opens the window when openAtStart is
 * set or when a window of that name is already open.
 *
 *   hostContext           kept, not used
 *   windowTitle           title of the window
 *   fullscreen            open full screen on the desktop; at most one window is full screen
 *   description           must not be null
 *   windowX, windowY      position of the window, see convention 6
 *   useWindowSize         use windowWidth and windowHeight instead of the frame's size; they are
 *                         also used when fullscreen is set; both 2147483647 means the frame's size
 *   inputConversion       0, or the index of a pixkit routine that turns the host's planes of
 *                         doubles into samples of dataType before display
 *   allocatePlaneBuffers  allow frames smaller than the configured size; they are centred. Without
 *                         it, and without an inputConversion, such frames are dropped
 *   synchronous           draw and handle events inside the host's own calls, on the calling
 *                         thread, instead of on the library's display thread
 *
 * A window of that name that is open already is kept when its frames have this size, it is full
 * screen now or not as fullscreen says, synchronous is unchanged and, unless fullscreen or
 * useWindowSize is set, the window has the frame's size. Otherwise a fresh one opens where the user
 * left the old one, or at windowX, windowY if that is full screen.
 *
 * Returns the block handle; null after a failure, with the text in errorMessage: "Unsupported video
 * data type" when dataType is above 8. Throws std::bad_alloc when memory runs out or a frame of
 * 8-bit red, green and blue planes exceeds 2147483647 bytes. Blocking: waits for the window when a
 * window of that name is open, and for the end of a display pass when it opens one; synchronous:
 * draws. */
FRAMESINK_API void* libCreate(char* errorMessage, uint64_t hostContext, const char* playerName,
                              const char* windowTitle, uint8_t fullscreen,
                              const InputDescription* description, uint8_t openAtStart,
                              uint32_t windowX, uint32_t windowY, uint8_t useWindowSize,
                              uint32_t windowWidth, uint32_t windowHeight, uint32_t inputConversion,
                              uint8_t allocatePlaneBuffers, uint8_t synchronous);

/* To be called once between libCreate and the first libUpdate. All set-up has happened by then. */
FRAMESINK_API void libStart(void* block, char* errorMessage);

/* Shows one frame.
 *
 *   plane1..plane3  the planes' samples; those that the input does not need may be null. With
 *                   inputCount 1 and componentCount 3 the three planes of width x height samples (8
 *                   bytes each with an inputConversion) lie one after another from plane1
 *   width, height   size of this frame; FRAMESINK_CONFIGURED_SIZE for the configured one. A smaller
 *                   frame is centred in the configured one and surrounded by the sample type's
 *                   minimum; then every plane given, chroma included, must have width x height
 *                   readable samples
 *
 * At the configured size, red, green, blue and intensity planes must have widths[0] x heights[0]
 * readable samples, Cb and Cr (widths[0] / 2) x heights[0]; with an inputConversion plane i needs
 * widths[i] x heights[i] doubles.
 *
 * The frame is dropped, without a message, when the window is closed or its record was destroyed or
 * renamed, when a plane that is needed is null, when it must be centred or converted but has no
 * buffer for that, when it would not fit, or when another block has set the name up with another
 * frame size.
 * Cost: one conversion and one memcpy; no allocation, no lock held by drawing, no waiting.
 * Synchronous blocks draw the frame and handle all waiting events before they return. */
FRAMESINK_API void libUpdate(void* block, char* errorMessage, const void* plane1,
                             const void* plane2, const void* plane3, uint32_t width,
                             uint32_t height);

/* The block has no outputs: does nothing. */
FRAMESINK_API void libOutputs(void* block);

/* Ends a run: does nothing. The window stays open, deliberately, so that the last frame can be
 * seen. */
FRAMESINK_API void libTerminate(void* block);

/* Frees a block; null is ignored. The window stays open. */
FRAMESINK_API void libDestroy(void* block);

/* ---- Windows by name ------------------------------------------------------------------------- */

/* Opens the window of a registered name, or raises it when it is open. Unknown names are ignored.
 *
 *   position       two values, x and y
 *   size           two values, width and height; used when fullscreen or useWindowSize is set, else
 *                  the window gets the frame's size
 *
 * A null position or size: nothing happens. Blocking: waits for the window when it is open, else
 * for the end of a display pass. */
FRAMESINK_API void createVideoWindow(const char* name, uint8_t fullscreen, const uint32_t* position,
                                     const uint32_t* size, uint8_t useWindowSize);

/* Closes the window of that name and forgets the name. Frames of blocks that use it are dropped
 * from then on. Unknown names are ignored. The close request always goes to the display thread's
 * windows: a synchronous window stays on screen. */
FRAMESINK_API void destroyVideoWindow(const char* name);

/* Writes the window's position (x, y) and size (width, height, of the window when not full screen);
 * all four are -2 when the name is registered and its window closed. Writes nothing for an unknown
 * name; a null pair is skipped. Blocking: waits for the window when it is open. */
FRAMESINK_API void getWindowPosSize(const char* name, int32_t* position, int32_t* size);

/* 1 when the window of that name is open and not closing, else 0. */
FRAMESINK_API uint8_t isPlayerOpen(const char* name);

/* Gives the record called name the name newName, and its window, if open, the title newTitle.
 * Blocks that were created under the old name no longer find their record; their frames are
 * dropped. The title change always goes to the display thread's windows: a synchronous window keeps
 * its title. Blocking: waits for the window when it is open. */
FRAMESINK_API void renameVideoWindow(const char* name, const char* newName, const char* newTitle);

/* ---- About the library ----------------------------------------------------------------------- */

/* Dotted version number, for example "1.0.0". */
FRAMESINK_API extern const char* const framesink_version;

/* Build date in the compiler's form, for example "Jul 28 2017". */
FRAMESINK_API extern const char* const framesink_build_date;

/* The library file's path within a host's installation: "bin\win64\framesink.dll" on every
 * system. */
FRAMESINK_API extern const char* const framesink_relative_path;

#ifdef __cplusplus
}
#endif

#endif
