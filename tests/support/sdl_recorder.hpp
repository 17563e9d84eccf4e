// Records every SDL call of the code under test with its arguments and its thread. The calls still
// reach SDL. A test may also run an action before a call, make calls fail, change results and feed
// events.
#pragma once

#include <SDL.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace framesink::test {

struct SdlCall {
  std::string function;
  std::vector<std::int64_t> arguments;  // numbers, and addresses as numbers
  std::vector<std::string> texts;       // the strings among the arguments
  std::int64_t result = 0;              // number or address; 0 if the function returns nothing
  int thread = 0;                       // the operating system's thread id
  bool fallible = false;                // the function has a result that means failure
  bool countable = false;               // fallible, and refusals were not suspended
  bool refused = false;                 // the test made it fail
  bool losable = false;                 // a loss of the display may meet it
  std::string error;                    // SDL's error text, if the call failed and set one
};

// SDL's error text after a refused call.
inline constexpr const char* kRefusal = "refused by the test";

// When a call of SDL loses the display: it does not reach SDL, or SDL has done it.
enum class LossMoment { kInsteadOfCall, kAfterCall };

// A test's action on the calls of one function. Once the hook is destroyed, its action neither runs
// nor will run again. Declare the hook after everything that the action refers to.
class SdlHook {
 public:
  explicit SdlHook(std::function<void()> remove) : remove_(std::move(remove)) {}
  SdlHook(SdlHook&& other) noexcept : remove_(std::exchange(other.remove_, [] {})) {}
  ~SdlHook() { remove_(); }
  SdlHook& operator=(SdlHook&&) = delete;

 private:
  std::function<void()> remove_;
};

// While one lives, this program's calls to SDL are recorded: those that the linker wraps (see
// CMakeLists.txt), not SDL's calls to itself. One at a time. Any thread may call it. Available to
// programs that link sdl_recorder.
class SdlRecorder {
 public:
  SdlRecorder();
  ~SdlRecorder();
  SdlRecorder(const SdlRecorder&) = delete;
  SdlRecorder& operator=(const SdlRecorder&) = delete;

  // Calls in the order in which they began.
  std::vector<SdlCall> calls() const;
  std::vector<SdlCall> calls(const std::string& function) const;
  std::vector<std::string> order() const;  // only the names
  std::size_t count(const std::string& function) const;
  // The last call of that function. Throws std::out_of_range if there was none.
  SdlCall last(const std::string& function) const;
  void forget();  // drops what was recorded so far

  // From now on, calls number `first` to `last` of the function fail: SDL is not called, and the
  // caller gets the failure result with kRefusal as error text. Functions without a result are
  // skipped. The exception is SDL_UnlockMutex, which is still called, because a lock that is never
  // released would block the test.
  static constexpr std::size_t kForever = SIZE_MAX;
  void refuse(const std::string& function, std::size_t first = 1, std::size_t last = kForever);
  void permit(const std::string& function);

  // Makes a single call fail in the same way: the `number`-th fallible call from now on (1: the
  // next).
  void refuseNth(std::size_t number);

  // Loses the display as Xlib does, in the `number`-th losable call from now on (1: the next). The
  // calls that the library makes inside callSdl are losable, except SDL_CreateThread, which never
  // uses the display and whose thread would outlive its owner.
  void loseDisplayAt(std::size_t number, LossMoment moment);

  // The function that lost the display; nullopt before the loss.
  std::optional<std::string> lossFunction() const;
  // The calls that began after the loss; empty before it.
  std::vector<SdlCall> callsAfterLoss() const;

  // Until resumeRefusals(), no call fails and none counts towards a refusal.
  void suspendRefusals();
  void resumeRefusals();

  // Queues an event that SDL_PollEvent returns before it asks SDL. Events are returned in the order
  // in which they were fed.
  void feed(const SDL_Event& event);

  // Runs `action` on the calling thread before each call of the function, while the hook lives. A
  // later hook on the function replaces it.
  [[nodiscard]] SdlHook before(const std::string& function,
                               std::function<void(const SdlCall&)> action);

  // Changes the function's results while the hook lives: `change` receives each result as a number
  // and returns what the caller gets.
  [[nodiscard]] SdlHook alter(const std::string& function,
                              std::function<std::int64_t(std::int64_t)> change);
};

// True on a threaded server's display thread.
bool isDisplayThread();

}  // namespace framesink::test
