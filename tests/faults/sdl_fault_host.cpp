// sdl_fault_host SERVER [FUNCTION FIRST LAST]: a host of the "threaded" or the "synchronous"
// server, whose SDL refuses the calls number FIRST to LAST of FUNCTION. If FUNCTION is "any", SDL
// refuses call number FIRST, counted over all functions, and LAST is ignored.
//
// Prints on standard output when it ends:
//   point FUNCTION     for each call that could have been refused
//   fault FUNCTION     for each call that was refused
//   message TEXT       for each line that belongs on standard error
//   stop MILLISECONDS  how long stopping took
// Prints "wrong: REASON" and ends at once if a check fails.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "display/server_instances.hpp"
#include "fault_run.hpp"
#include "support/foreign_leaks.hpp"

namespace framesink::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestStop{20};

// Constructed before any object of the library, and destroyed last.
[[gnu::init_priority(101)]] SdlRecorder recorder;

// Constructed before any server, so that its destructor runs after both servers have ended.
class Ending {
 public:
  ~Ending() {
    if (!isExpected) return;
    const auto took = Clock::now() - began;
    if (took > kLongestStop) giveUp("stopping took longer than 20 s");
    const auto calls = recorder.calls();
    checkCalls(calls);
    for (const SdlCall& call : calls) {
      if (call.refused) std::printf("fault %s\n", call.function.c_str());
      if (call.countable) std::printf("point %s\n", call.function.c_str());
    }
    for (const std::string& text : expectedMessages(calls))
      std::printf("message %s\n", text.c_str());
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(took);
    std::printf("stop %d\n", static_cast<int>(milliseconds.count()));
    std::fflush(stdout);
  }

  bool isExpected = false;
  Clock::time_point began;
};

Ending ending;

void refuse(const std::vector<std::string>& arguments) {
  const auto first = static_cast<std::size_t>(std::stoul(arguments.at(2)));
  if (arguments.at(1) == "any") {
    recorder.refuseNth(first);
  } else {
    recorder.refuse(arguments.at(1), first, std::stoul(arguments.at(3)));
  }
}

int host(const std::vector<std::string>& arguments) {
  if (!recorder.calls().empty()) giveUp("SDL was called at load");
  // Never deleted, because the display thread may live to the end of the process.
  auto* run = new FaultRun(recorder, arguments.at(0) == "synchronous");
  if (arguments.size() > 1) refuse(arguments);
  run->liveThrough();
  run->showHealthyFrame();
  // SDL was shut down while renderers and textures existed, which therefore leak.
  if (recorder.count("SDL_Quit") != 0) expectLeaks();
  ending.isExpected = true;
  ending.began = Clock::now();
  for (const bool synchronous : {false, true}) {
    if (SdlServer* server = existingServer(synchronous)) server->beginLeaving();
  }
  run->clock().release();
  return 0;
}

}  // namespace
}  // namespace framesink::test

int main(int count, char** arguments) {
  return framesink::test::host({arguments + 1, arguments + count});
}
