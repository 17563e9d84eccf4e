#include "forms.h"

#include <math.h>
#include <stddef.h>

enum { KINDS = 3, TYPES = 9, WIDTH = 160, HEIGHT = 120, WAVE = 64 };
enum { COLUMNS = WIDTH + WAVE, SAMPLES = COLUMNS * HEIGHT };

/* One plane for each sample type; a frame begins at one of the first WAVE columns. */
static double storage[TYPES][SAMPLES];
static const size_t sampleBytes[TYPES] = {8, 4, 1, 1, 2, 2, 4, 4, 1};

/* `value` is 0 for the smallest sample of the type's range and 1 for the largest. */
static void putSample(int type, size_t index, double value) {
  void* const plane = storage[type];
  switch (type) {
    case FRAMESINK_DOUBLE:
      ((double*)plane)[index] = value;
      break;
    case FRAMESINK_SINGLE:
      ((float*)plane)[index] = (float)value;
      break;
    case FRAMESINK_INT8:
      ((int8_t*)plane)[index] = (int8_t)(value * 255 - 128);
      break;
    case FRAMESINK_UINT8:
      ((uint8_t*)plane)[index] = (uint8_t)(value * 255);
      break;
    case FRAMESINK_INT16:
      ((int16_t*)plane)[index] = (int16_t)(value * 65535 - 32768);
      break;
    case FRAMESINK_UINT16:
      ((uint16_t*)plane)[index] = (uint16_t)(value * 65535);
      break;
    case FRAMESINK_INT32:
      ((int32_t*)plane)[index] = (int32_t)(value * 4294967295.0 - 2147483648.0);
      break;
    case FRAMESINK_UINT32:
      ((uint32_t*)plane)[index] = (uint32_t)(value * 4294967295.0);
      break;
    default:
      ((uint8_t*)plane)[index] = value > 0.5;
      break;
  }
}

void makePlanes(void) {
  const double turn = 2 * 3.14159265358979 / WAVE;
  for (int type = 0; type < TYPES; ++type) {
    for (size_t index = 0; index < SAMPLES; ++index) {
      putSample(type, index, 0.5 + 0.5 * sin(turn * (double)(index / HEIGHT)));
    }
  }
}

Form formOf(unsigned number) {
  const int isTall = (int)(number / (KINDS * TYPES) % 2);
  return (Form){.kind = (int)(number % KINDS),
                .type = (int)(number / KINDS % TYPES),
                .width = isTall ? 96 : WIDTH,
                .height = HEIGHT};
}

InputDescription describeForm(const Form* form) {
  const uint32_t chroma = form->kind == 2 ? form->width / 2 : form->width;
  const uint32_t planes = form->kind == 1 ? 1 : 3;
  return (InputDescription){.valid = 1,
                            .fourcc = {'Y', 'U', 'Y', form->kind == 2 ? '2' : ' '},
                            .inputCount = planes,
                            .componentCount = planes,
                            .widths = {form->width, chroma, chroma},
                            .heights = {form->height, form->height, form->height},
                            .dataType = (uint32_t)form->type,
                            .layout = 1};
}

static const void* planeFrom(int type, unsigned column) {
  return (const uint8_t*)storage[type] + column % WAVE * HEIGHT * sampleBytes[type];
}

FormFrame frameOf(const Form* form, unsigned step) {
  const uint32_t border = step % 16 == 0 ? 20 : 0;
  return (FormFrame){.planes = {planeFrom(form->type, step), planeFrom(form->type, step + 21),
                                planeFrom(form->type, step + 42)},
                     .width = form->width - border,
                     .height = form->height - border};
}
