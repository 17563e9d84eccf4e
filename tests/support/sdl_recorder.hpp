// What the code under test asks of SDL: every call with its arguments and its thread. Calls go on to
// SDL itself; a test may also look on before one is made, have calls refused, change answers and feed
// events.
#pragma once

#include <SDL.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace framesink::test {

struct SdlCall {
  std::string function;
  std::vector<std::int64_t> arguments;  // numbers, and addresses as numbers
  std::vector<std::string> texts;       // the strings among the arguments
  std::int64_t result = 0;              // number or address; 0 when there is none
  int thread = 0;                       // the operating system's number
  bool fallible = false;                // has an answer that means failure
  bool countable = false;               // the same, outside a suspension of refusals
  bool refused = false;                 // by the test
  std::string error;                    // SDL's text, when the call failed and set one
};

// SDL's error text after a refused call.
inline constexpr const char* kRefusal = "refused by the test";

// A test's hand in the calls of one function. When it has gone, its action neither runs nor will:
// declare it after what the action refers to.
class SdlHook {
 public:
  explicit SdlHook(std::function<void()> remove) : remove_(std::move(remove)) {}
  SdlHook(SdlHook&& other) noexcept : remove_(std::exchange(other.remove_, [] {})) {}
  ~SdlHook() { remove_(); }
  SdlHook& operator=(SdlHook&&) = delete;

 private:
  std::function<void()> remove_;
};

// While one lives, the SDL calls of this program are seen (those that the linker is told to wrap,
// see CMakeLists.txt; not SDL's calls to itself). One at a time. Any thread. Programs that link
// sdl_recorder have it.
class SdlRecorder {
 public:
  SdlRecorder();
  ~SdlRecorder();
  SdlRecorder(const SdlRecorder&) = delete;
  SdlRecorder& operator=(const SdlRecorder&) = delete;

  // In the order in which they began.
  std::vector<SdlCall> calls() const;
  std::vector<SdlCall> calls(const std::string& function) const;
  std::vector<std::string> order() const;  // the names alone
  std::size_t count(const std::string& function) const;
  // The last call of that function; throws std::out_of_range when there was none.
  SdlCall last(const std::string& function) const;
  void forget();  // what was seen so far

  // Calls number `first` to `last` of the function from now on are not made; they answer as a
  // failure, with kRefusal as error text. Functions without a result are just not called. Only
  // SDL_UnlockMutex is made all the same: nobody survives a lock that is never given back.
  static constexpr std::size_t kForever = SIZE_MAX;
  void refuse(const std::string& function, std::size_t first = 1, std::size_t last = kForever);
  void permit(const std::string& function);

  // The same for one call, the `number`-th from now on (1 is the next) of all fallible ones.
  void refuseNth(std::size_t number);

  // Until resumed nothing is refused, and no call counts towards a refusal.
  void suspendRefusals();
  void resumeRefusals();

  // SDL_PollEvent answers with this before it asks SDL, after what was fed earlier.
  void feed(const SDL_Event& event);

  // Runs `action` on the calling thread before each call of the function, while the hook lives. A
  // later hook on the function replaces it.
  [[nodiscard]] SdlHook before(const std::string& function,
                               std::function<void(const SdlCall&)> action);

  // Gives the function's results another value, while the hook lives: `change` gets each result, as
  // a number, and returns what the caller is to see.
  [[nodiscard]] SdlHook alter(const std::string& function,
                              std::function<std::int64_t(std::int64_t)> change);
};

// True on a threaded server's display thread.
bool isDisplayThread();

}  // namespace framesink::test
