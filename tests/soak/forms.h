/* The forms that frames of the soak take: RGB, intensity and YCbCr 4:2:2 of every sample type. */
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
  const void* planes[3]; /* as many samples as libUpdate may read */
  uint32_t width, height;
} FormFrame;

/* Once, before frames are asked for. */
void makePlanes(void);

/* 27 in a row are all different in kind or type. */
Form formOf(unsigned number);
InputDescription describeForm(const Form* form);

/* Waves that move with `step`; now and then smaller than the form. */
FormFrame frameOf(const Form* form, unsigned step);

#endif
