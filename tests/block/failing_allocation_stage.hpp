// A host that uses one or two window names before, during and after a failed allocation.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "host_block.hpp"

namespace framesink::test {

inline constexpr Size kFrame{64, 48};
inline constexpr Size kOtherFrame{32, 20};

// What a user and a host see of the stage's windows.
struct Seen {
  struct Name {
    std::optional<Size> frame;  // nullopt: the name is not registered
    bool open = false;
    std::vector<std::int32_t> posSize;
    bool operator==(const Name&) const = default;
  };
  Name old;
  Name renamed;
  std::multiset<std::string> titles;
  bool isNothing() const { return !old.frame && !renamed.frame && titles.empty(); }
  bool operator==(const Seen&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Seen& seen);

// Its calls fail the test if they take a second, or if anything but std::bad_alloc from libCreate
// leaves the library. The destructor closes all windows and forgets their names.
class Stage {
 public:
  explicit Stage(std::uint8_t synchronous);
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  // Waits until there are as many windows as open players, then reports them.
  Seen seen() const;

  // Waits until the player has a window or can no longer get one. True if it is open without one.
  bool isOpenWithoutWindow() const;

  void create(Size frame, std::uint8_t openAtStart);
  void update();
  void destroyBlocks();
  void openWindow();
  void rename();
  void destroyWindow();
  void ask();

 private:
  struct Block {
    void* handle;
    HostPlanes planes;
  };

  BlockRequest request_;
  const std::string newName_ = request_.name + " under another name";
  const std::string newTitle_ = request_.name + " with another title";
  const InputDescription input_ = describe(kRgb, FRAMESINK_UINT8, kFrame);
  const InputDescription otherInput_ = describe(kRgb, FRAMESINK_UINT8, kOtherFrame);
  ErrorBuffer error_;
  std::vector<Block> blocks_;
};

}  // namespace framesink::test
