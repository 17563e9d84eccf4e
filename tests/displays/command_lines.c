#include "command_lines.h"

#include <poll.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { END_OF_INPUT = 9 };

static char text[4096];
static size_t held = 0;  /* bytes in text */
static size_t taken = 0; /* bytes of the line that was returned last */

static char* takeLine(void) {
  char* const end = memchr(text, '\n', held);
  if (end == NULL) return NULL;
  *end = '\0';
  taken = (size_t)(end - text) + 1;
  return text;
}

char* nextCommand(long milliseconds) {
  held -= taken;
  memmove(text, text + taken, held);
  taken = 0;
  char* const line = takeLine();
  if (line != NULL) return line;
  struct pollfd input = {.fd = STDIN_FILENO, .events = POLLIN};
  if (poll(&input, 1, (int)milliseconds) <= 0) return NULL;
  const ssize_t count = read(STDIN_FILENO, text + held, sizeof text - held);
  if (count <= 0) _Exit(END_OF_INPUT);
  held += (size_t)count;
  return takeLine();
}

unsigned char sampleOf(int plane, unsigned row, unsigned column, unsigned number) {
  switch (plane) {
    case 0:
      return (unsigned char)(3 * column + 5 * row + 31 * number);
    case 1:
      return (unsigned char)((column ^ row) + 17 * number);
    default:
      return (unsigned char)(column * row / 7 + column + 11 * number);
  }
}
