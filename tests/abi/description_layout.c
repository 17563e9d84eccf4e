/* The offsets of InputDescription as a C compiler lays it out. */
#include "description_layout.h"

#include "framesink/framesink.h"

const size_t descriptionLayoutInC[DESCRIPTION_LAYOUT_ITEMS] = DESCRIPTION_LAYOUT;
