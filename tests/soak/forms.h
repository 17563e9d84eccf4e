/* The forms of the soak test's frames: RGB, intensity and YCbCr 4:2:2 with every sample type. */
#ifndef FORMS_H
#define FORMS_H

#include <stdint.h>

#include "framesink/framesink.h"

typedef struct Form {
  int kind; /* 0 RGB, 1 intensity, 2 YCbCr 4:2:2 */
  int type; /* FramesinkDataType */
  uint32_t width, height;
} Form;

typedef struct FormFrame {
  const void* planes[3]; /* with as many samples as libUpdate may read */
  uint32_t width, height;
} FormFrame;

/* Call once, before frameOf. */
void makePlanes(void);

/* Any 27 consecutive forms differ in kind or type. */
Form formOf(unsigned number);
InputDescription describeForm(const Form* form);

/* Waves that move with `step`. Every 16th frame is smaller than the form. */
FormFrame frameOf(const Form* form, unsigned step);

#endif
