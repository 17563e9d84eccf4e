#include "doctor/surroundings.hpp"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include "frames/sample_type.hpp"
#include "system/loader.hpp"

namespace framesink::play {
namespace {

constexpr std::array kEnvironment{"DISPLAY",         "WAYLAND_DISPLAY",   "XDG_SESSION_TYPE",
                                  "SDL_VIDEODRIVER", "SDL_RENDER_DRIVER", "SDL_VIDEO_X11_VISUALID",
                                  "LD_LIBRARY_PATH", "LD_PRELOAD"};
constexpr std::array kHints{"SDL_FRAMEBUFFER_ACCELERATION", "SDL_NO_SIGNAL_HANDLERS",
                            "SDL_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR", "SDL_RENDER_DRIVER"};

std::string orNotSet(const char* text) { return text != nullptr ? text : "(not set)"; }

// Finds a function of the SDL that the library has loaded; null if there is none.
template <class Function>
Function sdl(const char* name) {
  return reinterpret_cast<Function>(findLoaded(kSdlName, name));
}

// pixkit keeps a type's range in two static members of the template videoTraits.
void printRange(const SampleType& type) {
  const std::string stem = "_ZN11videoTraitsILi" + std::to_string(type.id) + "EE3";
  const void* least = findLoaded(kPixkitName, (stem + "minE").c_str());
  const void* most = findLoaded(kPixkitName, (stem + "maxE").c_str());
  std::cout << "  " << type.name << ": ";
  if (least == nullptr || most == nullptr) {
    std::cout << "not found in the process\n";
    return;
  }
  type.print(std::cout, least);
  std::cout << " to ";
  type.print(std::cout, most);
  std::cout << '\n';
}

}  // namespace

void printEnvironment() {
  std::cout << "environment:\n";
  for (const char* name : kEnvironment) {
    std::cout << "  " << name << ": " << orNotSet(std::getenv(name)) << '\n';
  }
}

// Library's constructor has found every symbol.
void printLibrary(const Library& library) {
  std::cout << "library: " << library.path() << '\n'
            << "  version: " << library.version << " of " << library.buildDate << '\n'
            << "  exports: all 14 are there\n";
}

void printSdl() {
  struct Version {
    std::uint8_t major, minor, patch;
  };
  const auto getVersion = sdl<void (*)(Version*)>("SDL_GetVersion");
  const auto count = sdl<int (*)()>("SDL_GetNumVideoDrivers");
  const auto driver = sdl<const char* (*)(int)>("SDL_GetVideoDriver");
  std::cout << "SDL: ";
  if (getVersion == nullptr || count == nullptr || driver == nullptr) {
    std::cout << "not found in the process\n";
    return;
  }
  Version version{};
  getVersion(&version);
  std::cout << int{version.major} << '.' << int{version.minor} << '.' << int{version.patch}
            << "\n  video drivers:";
  for (int i = 0; i < count(); ++i) std::cout << ' ' << driver(i);
  std::cout << '\n';
}

void printRanges() {
  std::cout << "pixkit ranges:\n";
  for (const SampleType& type : sampleTypes()) printRange(type);
}

void printHints() {
  const auto driver = sdl<const char* (*)()>("SDL_GetCurrentVideoDriver");
  const auto hint = sdl<const char* (*)(const char*)>("SDL_GetHint");
  if (driver == nullptr || hint == nullptr) return;
  std::cout << "  video driver in use: " << orNotSet(driver()) << "\n  hints in force:\n";
  for (const char* name : kHints) {
    std::cout << "    " << name << ": " << orNotSet(hint(name)) << '\n';
  }
}

}  // namespace framesink::play
