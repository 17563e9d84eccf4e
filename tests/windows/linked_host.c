/* A host linked with the library. It finds functions and data through the import library alone. */
#include <framesink/framesink.h>
#include <stdio.h>

int main(void) {
  int32_t position[2] = {11, 22}, size[2] = {33, 44};
  getWindowPosSize("none", position, size);
  printf("version %s, %d windows, %d\n", framesink_version, isPlayerOpen("none"), position[0]);
  return 0;
}
