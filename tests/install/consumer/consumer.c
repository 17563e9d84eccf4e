// Shows one frame in one window. Valid C and C++.
#include <framesink/framesink.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  static unsigned char plane[32 * 24];
  char error[FRAMESINK_ERROR_BYTES] = "";
  InputDescription in;
  memset(&in, 0, sizeof in);
  in.valid = 1;
  in.inputCount = in.componentCount = 1;
  in.widths[0] = 32;
  in.heights[0] = 24;
  in.dataType = FRAMESINK_UINT8;
  in.layout = 1;
  void* block = libCreate(error, 0, "consumer", "Consumer", 0, &in, 1, 0, 0, 0, 0, 0, 0, 0, 0);
  libStart(block, error);
  libUpdate(block, error, plane, 0, 0, FRAMESINK_CONFIGURED_SIZE, FRAMESINK_CONFIGURED_SIZE);
  printf("framesink %s, %s, window open: %d\n", framesink_version, error[0] ? error : "no error",
         isPlayerOpen("consumer"));
  libTerminate(block);
  libDestroy(block);
  return 0;
}
