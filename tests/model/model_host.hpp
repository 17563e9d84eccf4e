// A host that does the same to the library and to the model, and compares what they come to.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "../block/host_block.hpp"
#include "display/video_window_registry.hpp"
#include "lock_step.hpp"
#include "operations.hpp"
#include "support/scoped_variable.hpp"
#include "window_model.hpp"

namespace framesink::model {

inline Size sizeOf(Pair pair) {
  return {static_cast<std::uint32_t>(pair.first), static_cast<std::uint32_t>(pair.second)};
}

// The first record of that name; null when there is none.
const VideoWindow* findInLibrary(const std::string& name);

// SDL draws without a screen; the user's deeds are events in its queue, as a window system's are.
class ModelHost {
 public:
  ModelHost();
  ~ModelHost();
  ModelHost(const ModelHost&) = delete;
  ModelHost& operator=(const ModelHost&) = delete;

  // Closes and forgets everything. Both servers give the same next number to a player afterwards.
  void startOver();

  // Whether the model is another one after the operation.
  bool wouldChange(const Operation& operation) const;

  // Does it to both. Display passes are made only where the host waits for one, and around the
  // user's deeds.
  void apply(const Operation& operation);

  // Lets the display come to rest. Tells the first thing in which the library is not as the model
  // says; "" when it is.
  std::string difference();

 private:
  struct Handle {
    void* block;
    test::HostPlanes planes;
  };
  using Slot = std::pair<int, int>;  // name and form

  static void applyTo(WindowModel& model, const Operation& operation,
                      const std::map<Slot, Handle>& blocks);
  void applyToLibrary(const Operation& operation);
  void create(Slot slot);
  void update(int name);
  void letUserAct(const Operation& operation);
  void settle();
  void noteWindows();
  void noteAddresses();
  std::string differenceOf(const std::string& name);
  std::string differenceOfWindows();
  void alignNumbers();

  const test::ScopedVariable driver_{"SDL_VIDEODRIVER", "dummy"};
  test::ErrorBuffer error_;
  std::map<Slot, Handle> blocks_;
  WindowModel model_;
  std::map<std::pair<bool, int>, std::uint32_t> windowIds_;  // SDL's, by server and player
  std::optional<test::LockStep> lockStep_;
};

}  // namespace framesink::model
