/* framesink: shows the frames of a running model in live windows.
 *
 * This is the only header a host needs; it is valid C11 and C++. Load libframesink.so
 * (framesink.dll on Windows) with the operating system's loader, or link it. Both ways give the
 * same eleven functions and three strings.
 *
 * These conventions hold for every function:
 *
 *  1. Threads. Call one export at a time. Calls that concern threaded windows may come from any
 *     thread. The windows of a synchronous block belong to the thread that created the block: make
 *     every call that concerns them on that thread. The library never calls back into the host.
 *  2. Blocking. Unless its comment states otherwise, a function does not wait for drawing. A
 *     function that "waits for the window" waits until the display thread has made the window,
 *     normally a few milliseconds, and checks every 2 ms. The wait ends at once when that window
 *     can no longer appear because the user closed it, there is no display thread, or the library
 *     is being unloaded. If a window manager or a display stops responding while a window is being
 *     made, it delays only the functions that wait for or open a window, and for a display at most
 *     about 20 s.
 *  3. Ownership. The library reads or writes through a pointer argument during the call only. It
 *     copies strings, which must be zero-terminated; a null string counts as empty. The block
 *     handle is the only thing the host receives; free it with libDestroy.
 *  4. Names. A window is known by its name. In names and titles a line feed counts as a space.
 *     Names are case-sensitive.
 *  5. Flags are bytes: 0 is false, any other value is true.
 *  6. Units. Sizes are in pixels, positions in screen coordinates. If x or y is
 *     FRAMESINK_POSITION_UNDEFINED, the window system places the window. Other positions are
 *     clamped to -10000..10000, window sizes to 1..20000.
 *  7. Errors. Only libCreate, libStart and libUpdate report errors, as text in the host's buffer of
 *     at least FRAMESINK_ERROR_BYTES bytes. Without an error the buffer is unchanged. A text that
 *     fills the buffer has no terminating zero, see FRAMESINK_ERROR_BYTES. A null buffer discards
 *     the text. Display errors go to standard error and do not affect the model.
 *  8. Memory. If memory runs out, libCreate throws std::bad_alloc and leaves nothing behind.
 *  9. Lifetime. Windows belong to the library and outlive blocks and runs. A window closes when the
 *     user closes it, when the host calls destroyVideoWindow, or when the library is unloaded.
 *     Unloading and exiting close every window; they wait at most 20 s. Where SDL draws through
 *     OpenGL, as on Wayland, a library that has opened a threaded window stays loaded until the
 *     process ends, and its windows stay open.
 * 10. Loss of the display. If the X server ends, the connection breaks or the server does not answer
 *     for 20 s, every window counts as closed by the user, and no window can be opened any more.
 *     The process runs on. While SDL is on X11, the library's handler for broken connections is in
 *     force (XSetIOErrorHandler); it passes on what does not concern the library.
 * 11. Hosts that use SDL themselves: do not poll, draw or shut down SDL while a threaded window is
 *     open, because SDL is not made for two threads on one connection. Synchronous windows on the
 *     same thread are safe. Unloading shuts SDL down for the whole process.
 * 12. After the library has shut down, for example in exit handlers that run later, every function
 *     returns at once and does nothing.
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

/* The most bytes that a call writes into the host's error buffer. A text of this length or more is
 * cut to it and arrives without its terminating zero. To print the buffer as a string, give it one
 * byte more, set to zero: char error[FRAMESINK_ERROR_BYTES + 1] = "". */
#define FRAMESINK_ERROR_BYTES 1024

/* As width or height of libUpdate: the size in the InputDescription that libCreate received. */
#define FRAMESINK_CONFIGURED_SIZE 0xFFFFFFFFu

/* As x or y of a window: the window system chooses (SDL_WINDOWPOS_UNDEFINED). */
#define FRAMESINK_POSITION_UNDEFINED 0x1FFF0000u

/* The types of one sample in input planes (InputDescription.dataType). The library scales samples
 * so that the minimum of the type's range becomes 0 and its maximum 255; it shows uint8 samples
 * unchanged. The ranges come from the host's media library, pixkit; the comments below give those
 * of the stand-in pixkit that comes with framesink. */
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

/* Describes the planes of every frame of a block. libCreate copies the whole record.
 *
 * Three fields determine what the planes hold. The first rule that matches applies:
 *
 *   inputCount 1 and componentCount 1   one intensity plane
 *   fourcc "YUY2"                       YCbCr 4:2:2: Y, then Cb and Cr of half the width; BT.601,
 *                                       studio range
 *   anything else                       red, green and blue */
typedef struct InputDescription {
  uint8_t valid;           /* 0: the library ignores every frame of the block */
  uint8_t reserved1[23];   /* not read */
  char fourcc[4];          /* "YUY2" or anything else; no terminator */
  uint32_t inputCount;     /* plane buffers per frame; 1: plane1 holds all planes in succession */
  uint32_t componentCount; /* colour components per pixel: 1 or 3 */
  uint32_t widths[3];      /* columns of planes 1 to 3, pixels; widths[0] is the frame's width */
  uint32_t heights[3];     /* rows of planes 1 to 3, pixels; heights[0] is the frame's height */
  uint32_t dataType;       /* a FramesinkDataType */
  int32_t layout;          /* non-zero: planes are column-major (row r, column c is sample
                              r + c x height), which windows show correctly; 0 selects each
                              conversion's second path, see docs/integrators.md */
  uint8_t reserved2[12];   /* not read */
  uint8_t reserved3[8];    /* not read */
} InputDescription;

/* Hosts rely on the exact bytes of the record. */
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

/* Creates a block and registers its window under playerName. Opens the window if openAtStart is set
 * or if a window of that name is already open.
 *
 *   hostContext           stored, never used
 *   windowTitle           title of the window
 *   fullscreen            open the window full screen on the desktop; at most one window is full
 *                         screen at a time
 *   description           must not be null
 *   windowX, windowY      position of the window, see convention 6
 *   useWindowSize         use windowWidth and windowHeight instead of the frame's size. They are
 *                         also used when fullscreen is set. If both are 2147483647, the window gets
 *                         the frame's size
 *   inputConversion       0, or the index of a pixkit routine that converts the host's planes of
 *                         doubles to samples of dataType before display
 *   allocatePlaneBuffers  accept frames smaller than the configured size and centre them. Without
 *                         it and without an inputConversion, smaller frames are dropped
 *   synchronous           draw and handle events on the calling thread, inside the host's calls,
 *                         instead of on the library's display thread
 *
 * An open window of that name is kept if its frame size, full-screen state and synchronous flag
 * match and, unless fullscreen or useWindowSize is set, it has the frame's size. Otherwise a new
 * window opens where the user left the old one, or at windowX, windowY if the old one is full
 * screen.
 *
 * Returns the block handle. If dataType is above 8, returns null and writes "Unsupported video data
 * type" to errorMessage. Throws std::bad_alloc if memory runs out or if a frame of 8-bit red, green
 * and blue planes exceeds 2147483647 bytes.
 *
 * Blocking: if a window of that name is open, waits for the window; if the call opens a window,
 * waits for the end of a display pass. A synchronous block draws during the call. */
FRAMESINK_API void* libCreate(char* errorMessage, uint64_t hostContext, const char* playerName,
                              const char* windowTitle, uint8_t fullscreen,
                              const InputDescription* description, uint8_t openAtStart,
                              uint32_t windowX, uint32_t windowY, uint8_t useWindowSize,
                              uint32_t windowWidth, uint32_t windowHeight, uint32_t inputConversion,
                              uint8_t allocatePlaneBuffers, uint8_t synchronous);

/* Call this function once between libCreate and the first libUpdate. libCreate does all set-up. */
FRAMESINK_API void libStart(void* block, char* errorMessage);

/* Shows one frame.
 *
 *   plane1..plane3  the planes' samples. Planes that the kind of input does not need may be null.
 *                   With inputCount 1 and componentCount 3, the three planes of width x height
 *                   samples lie one after another from plane1; with an inputConversion each sample
 *                   has 8 bytes
 *   width, height   size of this frame; FRAMESINK_CONFIGURED_SIZE means the configured one. A
 *                   smaller frame is centred in the configured size and surrounded by the sample
 *                   type's minimum. Then every plane given, chroma included, must have width x
 *                   height readable samples
 *
 * At the configured size, red, green, blue, Y and intensity planes must have widths[0] x heights[0]
 * readable samples, Cb and Cr planes (widths[0] / 2) x heights[0]. With an inputConversion, plane i
 * must have widths[i] x heights[i] doubles.
 *
 * The library drops the frame without a message in these cases:
 *
 *   - the window is closed, or its record was destroyed or renamed
 *   - a plane that is needed is null
 *   - the frame must be centred or converted, but the block has no buffer for that
 *   - the frame does not fit into the configured size
 *   - another block has registered the name with another frame size
 *
 * Cost: one conversion and one memcpy. The call does not allocate, takes no lock that drawing holds
 * and does not wait. For a synchronous block it also draws the frame and handles all pending events
 * before it returns. */
FRAMESINK_API void libUpdate(void* block, char* errorMessage, const void* plane1,
                             const void* plane2, const void* plane3, uint32_t width,
                             uint32_t height);

/* Does nothing: a block has no outputs. */
FRAMESINK_API void libOutputs(void* block);

/* Marks the end of a run; does nothing. The window stays open so that the last frame remains
 * visible. */
FRAMESINK_API void libTerminate(void* block);

/* Frees a block; null is ignored. The window stays open. */
FRAMESINK_API void libDestroy(void* block);

/* ---- Windows by name ------------------------------------------------------------------------- */

/* Opens the window of a registered name, or raises it if it is open. Ignores unknown names.
 *
 *   position       two values, x and y
 *   size           two values, width and height; used if fullscreen or useWindowSize is set.
 *                  Otherwise the window gets the frame's size
 *
 * Does nothing if position or size is null. Blocking: if the window is open, waits for the window;
 * otherwise waits for the end of a display pass. */
FRAMESINK_API void createVideoWindow(const char* name, uint8_t fullscreen, const uint32_t* position,
                                     const uint32_t* size, uint8_t useWindowSize);

/* Closes the window of that name and forgets the name. From then on the library drops the frames of
 * blocks that use it. Ignores unknown names. The close request always goes to the display thread's
 * windows, so a synchronous window stays on the screen. */
FRAMESINK_API void destroyVideoWindow(const char* name);

/* Writes the window's position (x, y) and the size (width, height) that it has when it is not full
 * screen. Writes -2 to all four values if the name is registered and its window is closed. Writes
 * nothing for an unknown name. Skips a null position or size. Blocking: if the window is open,
 * waits for the window. */
FRAMESINK_API void getWindowPosSize(const char* name, int32_t* position, int32_t* size);

/* Returns 1 if the window of that name is open and not closing, otherwise 0. */
FRAMESINK_API uint8_t isPlayerOpen(const char* name);

/* Renames the record called name to newName and, if its window is open, sets the title newTitle.
 * Blocks that were created under the old name no longer find their record; the library drops their
 * frames. The title change always goes to the display thread's windows, so a synchronous window
 * keeps its title. Blocking: if the window is open, waits for the window. */
FRAMESINK_API void renameVideoWindow(const char* name, const char* newName, const char* newTitle);

/* ---- About the library ----------------------------------------------------------------------- */

/* Dotted version number, for example "1.0.0". */
FRAMESINK_API extern const char* const framesink_version;

/* Build date in the compiler's form, for example "Jul 28 2017". */
FRAMESINK_API extern const char* const framesink_build_date;

/* The library file's path within a host's installation: "bin\win64\framesink.dll" on every
 * operating system. */
FRAMESINK_API extern const char* const framesink_relative_path;

#ifdef __cplusplus
}
#endif

#endif
