// sdl_fault_host SERVER [FUNCTION FIRST LAST]: a host of the "threaded" or the "synchronous"
// server, whose SDL refuses the calls number FIRST to LAST of FUNCTION. If FUNCTION is "any", SDL
// refuses call number FIRST, counted over all functions, and LAST is ignored.
//
// sdl_fault_host SERVER lose NUMBER MOMENT: a host of one of these servers, or of "both", that
// loses its display in the NUMBER-th call of SDL that can lose it (0: never). MOMENT is "instead"
// of that call, or "after" it.
//
// Ends with status 42. Prints on standard output when it ends:
//   point FUNCTION     for each call that could have been refused, or that could lose the display
//   fault FUNCTION     for each call that was refused, or that lost the display
//   message TEXT       for each line that belongs on standard error
//   stop MILLISECONDS  how long stopping took
//   call MICROSECONDS  the longest call of the library in or after the loss of the display
//   rest MICROSECONDS  the processor time of 200 ms at rest, after a loss before the end
// Prints "wrong: REASON" and ends at once if a check fails.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "display/server_instances.hpp"
#include "fault_run.hpp"
#include "process/display_loss.hpp"
#include "support/foreign_leaks.hpp"

namespace framesink::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kOwnStatus = 42;
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
    recorder.lossFunction() ? tellOfLoss() : tellOfFaults();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(took);
    std::printf("stop %d\n", static_cast<int>(milliseconds.count()));
    std::fflush(stdout);
  }

  bool isExpected = false;
  bool isLosing = false;  // the display may be lost
  Clock::time_point began;
  std::vector<std::string> messages;  // about the loss

 private:
  void tellOfFaults() const {
    const auto calls = recorder.calls();
    checkCalls(calls);
    for (const SdlCall& call : calls) {
      if (call.refused) std::printf("fault %s\n", call.function.c_str());
      if (isLosing ? call.losable : call.countable)
        std::printf("point %s\n", call.function.c_str());
    }
    for (const std::string& text : expectedMessages(calls))
      std::printf("message %s\n", text.c_str());
  }

  void tellOfLoss() const {
    checkCallsAfterLoss(recorder.callsAfterLoss());
    expectLeaks();
    std::printf("fault %s\n", recorder.lossFunction()->c_str());
    for (const std::string& text : messages) std::printf("message %s\n", text.c_str());
  }
};

Ending ending;

void refuse(const std::vector<std::string>& arguments) {
  const auto first = static_cast<std::size_t>(std::stoul(arguments.at(2)));
  if (arguments.at(1) == "any") {
    recorder.refuseNth(first);
  } else if (arguments.at(1) == "lose") {
    ending.isLosing = true;
    recorder.loseDisplayAt(
        first, arguments.at(3) == "after" ? LossMoment::kAfterCall : LossMoment::kInsteadOfCall);
  } else {
    recorder.refuse(arguments.at(1), first, std::stoul(arguments.at(3)));
  }
}

Servers serversOf(const std::string& name) {
  if (name == "both") return Servers::kBoth;
  return name == "synchronous" ? Servers::kSynchronous : Servers::kThreaded;
}

void liveWithoutDisplay(FaultRun& run) {
  run.liveWithoutDisplay();
  ending.messages.emplace_back("No window can be opened: the display is gone.");
  std::printf("call %d\n", static_cast<int>(run.longestCallAfterLoss().count()));
  std::printf("rest %d\n", static_cast<int>(FaultRun::processorTimeAtRest().count()));
}

// The threaded server's windows close here, the synchronous server's once the library leaves.
void beginEnd(FaultRun& run) {
  ending.isExpected = true;
  ending.began = Clock::now();
  for (const bool synchronous : {false, true}) {
    if (SdlServer* server = existingServer(synchronous)) server->beginLeaving();
  }
  run.clock().release();
  if (!ending.isLosing) return;
  FaultRun::awaitDisplayThread();
  if (isDisplayLost()) ending.messages.emplace_back("The display is gone; the model runs on.");
}

int host(const std::vector<std::string>& arguments) {
  if (!recorder.calls().empty()) giveUp("SDL was called at load");
  // Never deleted, because the display thread may live to the end of the process.
  auto* run = new FaultRun(recorder, serversOf(arguments.at(0)));
  if (arguments.size() > 1) refuse(arguments);
  run->liveThrough();
  if (isDisplayLost()) {
    liveWithoutDisplay(*run);
  } else if (!ending.isLosing) {
    run->showHealthyFrame();
  }
  // SDL was shut down while renderers and textures existed, which therefore leak.
  if (recorder.count("SDL_Quit") != 0) expectLeaks();
  beginEnd(*run);
  return kOwnStatus;
}

}  // namespace
}  // namespace framesink::test

int main(int count, char** arguments) {
  return framesink::test::host({arguments + 1, arguments + count});
}
