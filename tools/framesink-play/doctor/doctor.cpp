#include "doctor/doctor.hpp"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include "frames/sample_type.hpp"
#include "host/library.hpp"
#include "showing/player.hpp"
#include "showing/views.hpp"
#include "sources/model_source.hpp"
#include "system/display_check.hpp"
#include "system/loader.hpp"

namespace framesink::play {
namespace {

constexpr Extent kTestSize{320, 240};

constexpr std::array kEnvironment{"DISPLAY",         "WAYLAND_DISPLAY",   "XDG_SESSION_TYPE",
                                  "SDL_VIDEODRIVER", "SDL_RENDER_DRIVER", "SDL_VIDEO_X11_VISUALID",
                                  "LD_LIBRARY_PATH", "LD_PRELOAD"};
constexpr std::array kHints{"SDL_FRAMEBUFFER_ACCELERATION", "SDL_NO_SIGNAL_HANDLERS",
                            "SDL_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR", "SDL_RENDER_DRIVER"};

std::string orNothing(const char* text) { return text != nullptr ? text : "(not set)"; }

template <class Function>
Function sdl(const char* name) {
  return reinterpret_cast<Function>(findLoaded(kSdlName, name));
}

void tellEnvironment() {
  std::cout << "environment:\n";
  for (const char* name : kEnvironment) {
    std::cout << "  " << name << ": " << orNothing(std::getenv(name)) << '\n';
  }
}

// All its symbols were found, or it would not be here.
void tellLibrary(const Library& library) {
  std::cout << "library: " << library.path() << '\n'
            << "  version: " << library.version << " of " << library.buildDate << '\n'
            << "  exports: all 14 are there\n";
}

void tellSdl() {
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

// The symbols are static data of the template videoTraits.
void tellRange(const SampleType& type) {
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

void tellRanges() {
  std::cout << "pixkit ranges:\n";
  for (const SampleType& type : sampleTypes()) tellRange(type);
}

// While SDL is up.
void tellHints() {
  const auto driver = sdl<const char* (*)()>("SDL_GetCurrentVideoDriver");
  const auto hint = sdl<const char* (*)(const char*)>("SDL_GetHint");
  if (driver == nullptr || hint == nullptr) return;
  std::cout << "  video driver in use: " << orNothing(driver()) << "\n  hints in force:\n";
  for (const char* name : kHints) {
    std::cout << "    " << name << ": " << orNothing(hint(name)) << '\n';
  }
}

// True when the window was there to the end.
bool tryWindow(const Library& library) {
  std::vector<Options> options(1);
  options[0].kind = Kind::kRgb;
  options[0].size = kTestSize;
  options[0].duration = 1;
  options[0].title = "framesink test window";
  options[0].measured = true;
  std::vector<std::unique_ptr<Source>> sources;
  sources.push_back(makeModelSource(kTestSize.width, kTestSize.height));
  Player player(options, library, std::move(sources));
  player.run();
  std::array<std::int32_t, 2> place{-2, -2}, size{-2, -2};
  const std::string name = windowName(1);
  library.getWindowPosSize(name.c_str(), place.data(), size.data());
  const bool open = library.isPlayerOpen(name.c_str()) != 0 && size[0] > 0;
  std::cout << "test window: " << (open ? "open" : "closed") << " after a second, " << size[0]
            << 'x' << size[1] << " at " << place[0] << ',' << place[1] << '\n';
  tellHints();
  printText(std::cout, player.shows().front()->statistics());
  return open;
}

ExitStatus verdict(ExitStatus status, const std::string& what) {
  std::cout << "verdict: " << what << std::endl;
  return status;
}

}  // namespace

ExitStatus runDoctor(const ProgramOptions& options) try {
  std::cout << "framesink-play " << FRAMESINK_PLAY_VERSION << '\n';
  tellEnvironment();
  const Library library(options.sharedLibrary);
  tellLibrary(library);
  tellSdl();
  tellRanges();
  requireDisplay();
  std::cout << "display: answers, or is not needed" << std::endl;
  if (!tryWindow(library)) return verdict(kNoDisplay, "the test window did not stay open");
  return verdict(kPlayed, "all is well");
} catch (const Failure& failure) {
  return verdict(failure.status, failure.what());
}

}  // namespace framesink::play
