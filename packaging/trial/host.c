/* Runs the README's C example. The status is 0 if the example's window is open at the end. */
#include <framesink/framesink.h>

static double red[640 * 480], green[640 * 480], blue[640 * 480];

int main(void) {
  const int steps = 100;
#include "ten_lines.h"
  return isPlayerOpen("model/view") ? 0 : 1;
}
