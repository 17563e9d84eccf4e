// A host with a window name or two, before, while and after its memory fails.
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
    std::optional<Size> frame;  // nothing: the name is not registered
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

// Its calls fail the test when they take a second or let anything but libCreate's std::bad_alloc
// pass. Its end closes and forgets everything.
class Stage {
 public:
  explicit Stage(std::uint8_t synchronous);
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  // Waits until there are as many windows as open players.
  Seen seen() const;

  // The window that the player is still to get has been made impossible. Waits for one of the two.
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
