/* Shows Conway's Game of Life on a torus in a window, until you close the window.
 *
 *     life [GENERATIONS]     stops after GENERATIONS and keeps showing the last one
 *
 *     cc -std=c11 -Iinclude examples/c/life.c -Lbuild/release/lib -lframesink -o life */
#define _POSIX_C_SOURCE 200809L /* nanosleep */

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "framesink/framesink.h"

enum { ROWS = 180, COLUMNS = 320, SCALE = 3 };

/* Cells are column-major, as the library requires: [c][r] is the cell in row r and column c. */
typedef uint8_t Cells[COLUMNS][ROWS];

static const char* const kName = "examples/life";

/* Makes about a third of the cells alive, the same ones in every run. */
static void scatter(Cells cells) {
  uint32_t random = 1;
  for (int column = 0; column < COLUMNS; ++column) {
    for (int row = 0; row < ROWS; ++row) {
      random = random * 1664525u + 1013904223u;
      cells[column][row] = (random >> 16) % 3 == 0;
    }
  }
}

static int neighbours(Cells cells, int column, int row) {
  const int left = (column + COLUMNS - 1) % COLUMNS, right = (column + 1) % COLUMNS;
  const int above = (row + ROWS - 1) % ROWS, below = (row + 1) % ROWS;
  return cells[left][above] + cells[left][row] + cells[left][below] + cells[column][above] +
         cells[column][below] + cells[right][above] + cells[right][row] + cells[right][below];
}

static void generate(Cells next, Cells cells) {
  for (int column = 0; column < COLUMNS; ++column) {
    for (int row = 0; row < ROWS; ++row) {
      const int count = neighbours(cells, column, row);
      next[column][row] = count == 3 || (count == 2 && cells[column][row]);
    }
  }
}

static void* openDisplay(void) {
  const InputDescription cells = {.valid = 1,
                                  .inputCount = 1,
                                  .componentCount = 1,
                                  .widths = {COLUMNS},
                                  .heights = {ROWS},
                                  .dataType = FRAMESINK_BOOLEAN,
                                  .layout = 1};
  char error[FRAMESINK_ERROR_BYTES + 1] = ""; /* the longest messages have no terminating zero */
  void* const block = libCreate(error, 0, kName, "Life", 0, &cells, 1, 100, 100, 1, COLUMNS * SCALE,
                                ROWS * SCALE, 0, 0, 0);
  if (block == NULL) {
    fprintf(stderr, "life: %s\n", error);
    exit(1);
  }
  libStart(block, error);
  return block;
}

static void rest(long milliseconds) {
  nanosleep(&(struct timespec){milliseconds / 1000, milliseconds % 1000 * 1000000}, NULL);
}

int main(int count, char** arguments) {
  static Cells cells[2];
  const long generations = count > 1 ? strtol(arguments[1], NULL, 10) : -1;
  void* const block = openDisplay();
  scatter(cells[0]);
  libUpdate(block, NULL, cells[0], NULL, NULL, FRAMESINK_CONFIGURED_SIZE,
            FRAMESINK_CONFIGURED_SIZE);
  for (long done = 0; isPlayerOpen(kName); rest(20)) {
    if (done == generations) continue;
    generate(cells[(done + 1) % 2], cells[done % 2]);
    ++done;
    libUpdate(block, NULL, cells[done % 2], NULL, NULL, FRAMESINK_CONFIGURED_SIZE,
              FRAMESINK_CONFIGURED_SIZE);
  }
  libTerminate(block);
  libDestroy(block);
  return 0;
}
