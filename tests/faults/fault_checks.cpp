// What a whole run's calls tell: nothing left behind, nothing used after its end, every failure told.
#include <map>
#include <set>

#include "fault_run.hpp"

namespace framesink::test {
namespace {

struct Resource {
  const char* made;
  const char* released;
  bool goesWithSdl;  // must not be touched once SDL is shut down
};
constexpr Resource kResources[] = {{"SDL_CreateWindow", "SDL_DestroyWindow", true},
                                   {"SDL_CreateRenderer", "SDL_DestroyRenderer", true},
                                   {"SDL_CreateTexture", "SDL_DestroyTexture", true},
                                   {"SDL_CreateRGBSurfaceFrom", "SDL_FreeSurface", false},
                                   {"SDL_CreateMutex", "SDL_DestroyMutex", false}};

// Of one kind, while they live.
class Living {
 public:
  explicit Living(const Resource& resource) : resource_(resource) {}

  void follow(const SdlCall& call, bool isTextureLost) {
    if (call.function == resource_.made && call.result != 0) {
      living_.insert(call.result);
    } else if (call.function == resource_.released && call.arguments[0] != 0) {
      if (living_.erase(call.arguments[0]) == 0) giveUp(call.function + " of what is not there");
    } else if (call.function == "SDL_Quit" && resource_.goesWithSdl) {
      if (!isTextureLost) expectNone();
      living_.clear();
    }
  }
  void expectNone() const {
    if (!living_.empty()) giveUp(std::string("never released: from ") + resource_.made);
  }

 private:
  const Resource& resource_;
  std::set<std::int64_t> living_;
};

bool isCleaningUp(const SdlCall& call) { return call.function == "SDL_WaitThread"; }

}  // namespace

// SDL itself is shut down under windows that are still there only when a texture was lost.
void checkCalls(const std::vector<SdlCall>& calls) {
  for (const Resource& resource : kResources) {
    Living living(resource);
    bool isTextureLost = false;
    for (const SdlCall& call : calls) {
      if (call.function == "SDL_LockTexture") isTextureLost = call.result < 0;
      living.follow(call, isTextureLost);
      if (call.function == "SDL_Quit") isTextureLost = false;
    }
    living.expectNone();
  }
  std::string last;
  for (const SdlCall& call : calls) {
    if (!isCleaningUp(call)) last = call.function;
  }
  if (last != "SDL_Quit") giveUp("the last call is " + last);
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
