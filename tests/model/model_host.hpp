// A host that does the same with the library and with the model, and compares the two.
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

// The first record of that name; null if there is none.
const VideoWindow* findInLibrary(const std::string& name);

// SDL runs without a screen. The user's deeds are events in SDL's queue, as they are on a screen.
class ModelHost {
 public:
  ModelHost();
  ~ModelHost();
  ModelHost(const ModelHost&) = delete;
  ModelHost& operator=(const ModelHost&) = delete;

  // Closes and forgets everything. Afterwards the next player of each server has the same id.
  void startOver();

  // True if the operation would change the model or create a new block.
  bool wouldChange(const Operation& operation) const;

  // Applies the operation to library and model. Display passes run only where the host waits for
  // one, around the user's deeds and around the creation of full-screen windows. After the loss of
  // the display, there are none.
  void apply(const Operation& operation);

  // Lets the display settle, then describes the first difference between library and model; "" if
  // there is none. After the loss of the display, SDL's windows are not compared.
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
  void loseDisplay();
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
  std::map<std::pair<bool, int>, std::uint32_t> windowIds_;  // SDL's ids, by server and player
  std::optional<test::LockStep> lockStep_;
};

}  // namespace framesink::model
