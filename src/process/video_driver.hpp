// The video driver that SDL has chosen, and how it draws.
#pragma once

namespace framesink {

// False if this SDL does not tell its driver.
bool canAskForVideoDriver();

// The name of SDL's video driver; null if video is down or SDL does not tell.
const char* videoDriver();

// True for each of SDL's video drivers that is not known to draw software windows in software; false
// for null, which is no driver.
bool drawsThroughOpenGl(const char* videoDriver);

}  // namespace framesink
