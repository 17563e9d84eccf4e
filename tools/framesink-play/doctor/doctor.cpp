#include "doctor/doctor.hpp"

#include <array>
#include <cstdint>
#include <iostream>
#include <string>

#include "doctor/surroundings.hpp"
#include "host/library.hpp"
#include "showing/player.hpp"
#include "showing/views.hpp"
#include "sources/model_source.hpp"
#include "system/display_check.hpp"

namespace framesink::play {
namespace {

constexpr Extent kTestSize{320, 240};

// Shows the model in a window for a second; true if the window is still open then.
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
  printHints();
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
  printEnvironment();
  const Library library(options.sharedLibrary);
  printLibrary(library);
  printSdl();
  printRanges();
  requireDisplay();
  std::cout << "display: answers, or is not needed" << std::endl;
  if (!tryWindow(library)) return verdict(kNoDisplay, "the test window did not stay open");
  return verdict(kPlayed, "all is well");
} catch (const Failure& failure) {
  return verdict(failure.status, failure.what());
}

}  // namespace framesink::play
