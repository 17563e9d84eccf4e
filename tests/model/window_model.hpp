// Restates the rules for blocks, names, players and windows in plain maps. Shares no code with the
// library, which the tests compare with it.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace framesink::model {

// x and y, or width and height.
struct Pair {
  int first = 0;
  int second = 0;
  bool operator==(const Pair&) const = default;
};

// The settings with which a block is created.
struct Block {
  std::string name{};
  std::string title{};
  Pair frame{};
  bool fullscreen = false;
  Pair position{};
  bool useWindowSize = false;
  Pair windowSize{};
  bool open = false;
  bool synchronous = false;
  std::uint32_t colour = 0;  // of all its frames
  bool operator==(const Block&) const = default;
};

// What a user does to a window.
struct Deed {
  enum class Kind { kMove, kResize, kEscape, kClose } kind;
  Pair to;
  bool operator==(const Deed&) const = default;
};

struct Player {
  std::string title{};
  Pair frame{};
  Pair position{};  // as requested, or as the user left it
  Pair size{};      // as requested, or as the user left it
  Pair askedPosition{};
  Pair askedSize{};
  bool fullscreen = false;
  // nullopt: not drawn since it was made or left full screen
  std::optional<std::uint32_t> colour{};
  std::vector<Deed> unseen{};  // synchronous: deeds since the last update
  bool operator==(const Player&) const = default;
};

struct Record {
  std::string name{};
  bool synchronous = false;
  Pair frame{};
  int player = -1;
  std::uint32_t colour = 0;
  const void* address = nullptr;  // of the library's record, once known
  bool operator==(const Record&) const = default;
};

class WindowModel {
 public:
  // Finds the library's first record of a name, which is then the first here too.
  using Find = std::function<const void*(const std::string& name)>;
  explicit WindowModel(Find find) : find_(std::move(find)) {}

  void create(const Block& block);
  void update(const Block& block);
  void open(const std::string& name, Pair position, Pair size, bool useWindowSize);
  void destroy(const std::string& name);
  void rename(const std::string& name, const std::string& newName, const std::string& title);
  void act(const std::string& name, const Deed& deed);
  void loseDisplay();  // for good

  // Each is null if there is none.
  Record* first(const std::string& name);
  Player* player(bool synchronous, int id);
  Player* playerOf(const std::string& name);

  bool isSame(const WindowModel& other) const {
    return records == other.records && players[0] == other.players[0] &&
           players[1] == other.players[1];
  }

  std::vector<Record> records;
  std::map<int, Player> players[2];  // by `synchronous`, then by id
  int nextId[2] = {0, 0};
  bool isDisplayLost = false;

 private:
  int add(bool synchronous, const std::string& title, Pair frame, Pair position, Pair size,
          bool fullscreen);
  void forget(const std::string& name);
  static void leaveFullscreen(Player& player);
  static bool see(Player& player, const Deed& deed);  // true if it closes the window

  Find find_;
};

}  // namespace framesink::model
