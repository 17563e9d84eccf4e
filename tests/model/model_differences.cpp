// Compares the library's state with the model's.
#include <SDL.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "model_host.hpp"
#include "support/sdl_windows.hpp"

namespace framesink::model {
namespace {

template <class... Parts>
std::string text(const Parts&... parts) {
  std::ostringstream out;
  (out << ... << parts);
  return out.str();
}

Position positionOf(Pair pair) {
  return {static_cast<std::uint32_t>(pair.first), static_cast<std::uint32_t>(pair.second)};
}

std::string differenceOf(const test::SdlWindowFacts& window, const Player& player) {
  if (window.title != player.title) {
    return text("is called '", window.title, "', not '", player.title, "'");
  }
  if (window.fullscreen != player.fullscreen) return "is full screen, or is not";
  if (!player.fullscreen && window.size != sizeOf(player.askedSize)) {
    return text("is ", window.size.width, "x", window.size.height, ", not ", player.askedSize.first,
                "x", player.askedSize.second);
  }
  if (!player.fullscreen && window.position != positionOf(player.askedPosition)) {
    return text("is at ", static_cast<int>(window.position.x), ",",
                static_cast<int>(window.position.y));
  }
  if (player.colour && window.colour != player.colour) {
    return text("shows ", std::hex, window.colour.value_or(0xFFFFFFFF), ", not ", *player.colour);
  }
  return "";
}

// True if every pixel of the three planes is `colour`, 0xRRGGBB.
bool isPlain(const std::uint8_t* planes, std::size_t samples, std::uint32_t colour) {
  for (std::size_t i = 0; i < 3 * samples; ++i) {
    if (planes[i] != static_cast<std::uint8_t>(colour >> (16 - 8 * (i / samples)))) return false;
  }
  return true;
}

std::string differenceOf(const VideoWindow& found, const Record& record) {
  if (static_cast<int>(found.playerId) != record.player) {
    return text("has player ", static_cast<int>(found.playerId), ", not ", record.player);
  }
  if (found.synchronous != record.synchronous) return "is of the other server";
  const Size frame = sizeOf(record.frame);
  if (found.frameSize() != frame) return "has another frame size";
  const std::size_t samples = std::size_t{frame.width} * frame.height;
  return isPlain(found.frameBuffer.get(), samples, record.colour) ? "" : "has another frame";
}

}  // namespace

const VideoWindow* findInLibrary(const std::string& name) {
  return videoWindowRegistry().findVideoWindow(name);
}

// A drain ends at each event that belongs to none of our windows. Therefore passes run until three
// in a row leave no event behind; closed players are gone by then.
void ModelHost::settle() {
  if (model_.isDisplayLost) return;
  constexpr int kEnough = 1000;
  int passes = 0;
  for (int quiet = 0; quiet < 3; ++quiet) {
    test::LockStep::runPass();
    if (SDL_HasEvents(SDL_FIRSTEVENT, SDL_LASTEVENT)) quiet = -1;
    if (++passes == kEnough) throw std::runtime_error("SDL's events are not taken");
  }
  noteWindows();
}

// A new window belongs to the first player that matches it and has none yet. If none matches, it
// belongs to the first player without a window.
void ModelHost::noteWindows() {
  for (const test::SdlWindowFacts& window : test::sdlWindows()) {
    const bool synchronous = window.isOfThisThread;
    const bool isKnown = std::any_of(windowIds_.begin(), windowIds_.end(),
                                     [&](const auto& entry) { return entry.second == window.id; });
    if (isKnown) continue;
    int owner = -1;
    for (const auto& [id, player] : model_.players[synchronous]) {
      if (windowIds_.contains({synchronous, id})) continue;
      const bool isHis = model::differenceOf(window, player).empty();
      if (isHis || owner < 0) owner = id;
      if (isHis) break;
    }
    if (owner >= 0) windowIds_[{synchronous, owner}] = window.id;
  }
}

// Notes the addresses of the library's records. Of several records with one name, the library
// reveals only the first.
void ModelHost::noteAddresses() {
  for (const char* name : kNames) {
    const VideoWindow* window = findInLibrary(name);
    std::vector<Record*> hidden;
    bool isKnown = window == nullptr;
    for (Record& record : model_.records) {
      isKnown = isKnown || record.address == window;
      if (record.name == name && record.address == nullptr) hidden.push_back(&record);
    }
    if (isKnown || hidden.empty()) continue;
    const auto same = std::find_if(hidden.begin(), hidden.end(), [&](const Record* record) {
      return model::differenceOf(*window, *record).empty();
    });
    (same == hidden.end() ? hidden.back() : *same)->address = window;
  }
}

std::string ModelHost::difference() {
  settle();
  for (const char* name : {kNames[0], kNames[1], kWrittenNames[0], "model C"}) {
    const std::string found = differenceOf(name);
    if (!found.empty()) return text(name, ": ", found);
  }
  return model_.isDisplayLost ? "" : differenceOfWindows();
}

std::string ModelHost::differenceOf(const std::string& name) {
  std::string ownName = name;
  std::replace(ownName.begin(), ownName.end(), '\n', ' ');
  const Record* record = model_.first(ownName);
  const Player* player = model_.playerOf(ownName);
  std::vector<int> seen(4, 4711);
  getWindowPosSize(name.c_str(), seen.data(), seen.data() + 2);
  std::vector<int> wanted(4, record == nullptr ? 4711 : -2);
  if (player != nullptr) {
    wanted = {player->position.first, player->position.second, player->size.first,
              player->size.second};
  }
  if (seen != wanted) {
    return text("is at ", seen[0], ",", seen[1], " with ", seen[2], "x", seen[3], ", not ",
                wanted[0], ",", wanted[1], " with ", wanted[2], "x", wanted[3]);
  }
  if ((isPlayerOpen(name.c_str()) != 0) != (player != nullptr)) return "isPlayerOpen";
  const VideoWindow* found = findInLibrary(name);
  if ((found == nullptr) != (record == nullptr)) return "is known to one alone";
  if (record == nullptr) return "";
  return model::differenceOf(*found, *record);
}

std::string ModelHost::differenceOfWindows() {
  const auto windows = test::sdlWindows();
  const std::size_t players = model_.players[0].size() + model_.players[1].size();
  if (windows.size() != players) return text(windows.size(), " windows, not ", players);
  for (const test::SdlWindowFacts& window : windows) {
    const auto entry = std::find_if(windowIds_.begin(), windowIds_.end(),
                                    [&](const auto& e) { return e.second == window.id; });
    if (entry == windowIds_.end()) return text("nobody's window '", window.title, "'");
    const auto [synchronous, id] = entry->first;
    const Player* player = model_.player(synchronous, id);
    if (player == nullptr) return text("window of a closed player '", window.title, "'");
    const std::string found = model::differenceOf(window, *player);
    if (!found.empty()) {
      return text("the window of ", synchronous ? "synchronous" : "threaded", " player ", id, " ",
                  found);
    }
  }
  return "";
}

}  // namespace framesink::model
