// Checks all calls of a run: nothing is left behind, nothing is used after its release or on a
// foreign thread, and every failure is printed.
#include <algorithm>
#include <map>
#include <set>

#include "fault_run.hpp"

namespace framesink::test {
namespace {

using Names = std::set<std::string>;

// A kind of object that SDL makes. Only the thread that made an object may use and release it, and
// SDL's shut-down ends it; mutexes are the exception.
struct Kind {
  const char* made;
  const char* released;
  Names users;  // functions that have it as their first argument
  bool isOfOneThread = true;
};
const Kind kKinds[] = {
    {"SDL_CreateWindow",
     "SDL_DestroyWindow",
     {"SDL_CreateRenderer", "SDL_GetWindowFlags", "SDL_GetWindowID", "SDL_GetWindowPixelFormat",
      "SDL_GetWindowSize", "SDL_RaiseWindow", "SDL_SetWindowFullscreen", "SDL_SetWindowIcon",
      "SDL_SetWindowSize", "SDL_SetWindowTitle", "SDL_ShowWindow"}},
    {"SDL_CreateRenderer",
     "SDL_DestroyRenderer",
     {"SDL_CreateTexture", "SDL_RenderSetLogicalSize", "SDL_RenderClear", "SDL_RenderCopy",
      "SDL_RenderPresent"}},
    {"SDL_CreateTexture", "SDL_DestroyTexture", {"SDL_LockTexture", "SDL_UnlockTexture"}},
    {"SDL_CreateRGBSurfaceFrom", "SDL_FreeSurface", {}},
    {"SDL_CreateMutex", "SDL_DestroyMutex", {"SDL_LockMutex", "SDL_UnlockMutex"}, false}};

// The functions that host threads may call on the display thread's windows.
const Names kForAnyThread{"SDL_RaiseWindow", "SDL_SetWindowTitle", "SDL_GetWindowFlags"};

// Follows the living objects of one kind.
class Living {
 public:
  explicit Living(const Kind& kind) : kind_(kind) {}

  void follow(const SdlCall& call) {
    const std::int64_t first = call.arguments.empty() ? 0 : call.arguments[0];
    if (call.function == kind_.released || kind_.users.count(call.function) != 0) use(call, first);
    if (call.function == kind_.released) threads_.erase(first);
    if (call.function == kind_.made && call.result != 0) threads_[call.result] = call.thread;
  }

  void sdlEnds(bool isTextureLost) {
    if (!kind_.isOfOneThread) return;
    if (!isTextureLost) expectNone();
    threads_.clear();
  }

  void expectNone() const {
    if (!threads_.empty()) giveUp(std::string("never released: from ") + kind_.made);
  }

 private:
  void use(const SdlCall& call, std::int64_t thing) const {
    if (thing == 0) return;
    const auto found = threads_.find(thing);
    if (found == threads_.end()) giveUp(call.function + " of an object that does not exist");
    const bool isForeign = found->second != call.thread && kForAnyThread.count(call.function) == 0;
    if (kind_.isOfOneThread && isForeign) giveUp(call.function + " on another thread");
  }

  const Kind& kind_;
  std::map<std::int64_t, int> threads_;  // by object: the thread that made it
};

// SDL may be shut down while windows exist only if a texture was lost.
void checkLives(const std::vector<SdlCall>& calls) {
  for (const Kind& kind : kKinds) {
    Living living(kind);
    bool isTextureLost = false;
    for (const SdlCall& call : calls) {
      if (call.function == "SDL_LockTexture") isTextureLost = call.result < 0;
      if (call.function == "SDL_Quit") living.sdlEnds(std::exchange(isTextureLost, false));
      living.follow(call);
    }
    living.expectNone();
  }
}

// SDL_Init is called only while SDL video is down, and then followed by SDL_EnableScreenSaver.
void checkStart(const std::vector<SdlCall>& calls) {
  bool isVideoDown = false;
  std::size_t starts = 0;
  std::size_t screenSavers = 0;
  for (const SdlCall& call : calls) {
    if (call.function == "SDL_WasInit") isVideoDown = (call.result & SDL_INIT_VIDEO) == 0;
    if (call.function == "SDL_Init") {
      if (!std::exchange(isVideoDown, false)) giveUp("SDL_Init although video is up");
      ++starts;
    }
    if (call.function == "SDL_EnableScreenSaver" && ++screenSavers != starts) {
      giveUp("SDL_EnableScreenSaver without SDL_Init");
    }
  }
  if (starts != screenSavers) giveUp("SDL_Init without SDL_EnableScreenSaver");
}

// The library rests 1 or 3 ms between passes, 1 ms for a lock, 2 ms for a window, 10 ms to end.
void checkRests(const std::vector<SdlCall>& calls) {
  static const std::set<std::int64_t> kRests{1, 2, 3, 10};
  for (const SdlCall& call : calls) {
    if (call.function != "SDL_Delay") continue;
    if (kRests.count(call.arguments[0]) == 0) {
      giveUp("a rest of " + std::to_string(call.arguments[0]) + " ms");
    }
  }
}

void checkEnd(const std::vector<SdlCall>& calls) {
  const auto last = std::find_if(calls.rbegin(), calls.rend(), [](const SdlCall& call) {
    return call.function != "SDL_WaitThread";  // made by the test, to clean up
  });
  if (last->function != "SDL_Quit") giveUp("the last call is " + last->function);
}

// A window that was made to reach SDL's connection. Its failure is not printed, because the next
// window is tried instead.
bool isForConnection(const SdlCall& call) {
  return call.function == "SDL_CreateWindow" && call.arguments.back() == SDL_WINDOW_HIDDEN;
}

}  // namespace

void checkCalls(const std::vector<SdlCall>& calls) {
  checkLives(calls);
  checkStart(calls);
  checkRests(calls);
  checkEnd(calls);
}

std::vector<std::string> expectedMessages(const std::vector<SdlCall>& calls) {
  static const std::map<std::string, std::string> kBeginnings{
      {"SDL_Init", "Could not initialize SDL: "},
      {"SDL_CreateThread", "Internal error: SDL_CreateThread failed: "},
      {"SDL_CreateWindow", "Could not create window: "},
      {"SDL_CreateTexture", "Unable to create texture: "},
      {"SDL_RenderSetLogicalSize", "Internal error: unable to set logical size: "},
      {"SDL_LockTexture", "ERROR: Could not lock texture: "}};
  std::vector<std::string> messages;
  for (const SdlCall& call : calls) {
    const auto beginning = kBeginnings.find(call.function);
    if (isForConnection(call)) continue;
    if (beginning != kBeginnings.end() && !call.error.empty()) {
      messages.push_back(beginning->second + call.error);
    } else if (call.function == "SDL_CreateRenderer" && !call.error.empty() &&
               call.arguments[2] == SDL_RENDERER_ACCELERATED) {
      messages.push_back("Could not create renderer: " + call.error);
    } else if (call.function == "SDL_WasInit" && call.arguments[0] == SDL_INIT_EVERYTHING &&
               (call.result & SDL_INIT_VIDEO) == 0) {
      messages.push_back("Internal error: SDL video subsystem is not initialized.");
    }
  }
  return messages;
}

}  // namespace framesink::test
