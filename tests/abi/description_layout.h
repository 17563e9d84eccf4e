/* One list for the C and the C++ compiler: the offsets of InputDescription's fields, its size. */
#ifndef DESCRIPTION_LAYOUT_H
#define DESCRIPTION_LAYOUT_H

#include <stddef.h>

#define DESCRIPTION_LAYOUT_ITEMS 14
#define DESCRIPTION_LAYOUT                                                                 \
  {                                                                                        \
    offsetof(InputDescription, valid), offsetof(InputDescription, reserved1),              \
        offsetof(InputDescription, fourcc), offsetof(InputDescription, inputCount),        \
        offsetof(InputDescription, componentCount), offsetof(InputDescription, widths[0]), \
        offsetof(InputDescription, widths[2]), offsetof(InputDescription, heights[0]),     \
        offsetof(InputDescription, heights[2]), offsetof(InputDescription, dataType),      \
        offsetof(InputDescription, layout), offsetof(InputDescription, reserved2),         \
        offsetof(InputDescription, reserved3), sizeof(InputDescription)                    \
  }

#ifdef __cplusplus
extern "C" {
#endif
extern const size_t descriptionLayoutInC[DESCRIPTION_LAYOUT_ITEMS];
#ifdef __cplusplus
}
#endif

#endif
