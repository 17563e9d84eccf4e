#include "window_model.hpp"

#include <iterator>
#include <utility>

namespace framesink::model {

Record* WindowModel::first(const std::string& name) {
  std::vector<Record*> named;
  for (Record& record : records) {
    if (record.name == name) named.push_back(&record);
  }
  if (named.size() < 2) return named.empty() ? nullptr : named.front();
  const void* address = find_(name);
  for (Record* record : named) {
    if (record->address == address) return record;
  }
  for (Record* record : named) {
    if (record->address == nullptr) return record;
  }
  return nullptr;
}

Player* WindowModel::player(bool synchronous, int id) {
  const auto found = players[synchronous].find(id);
  return found == players[synchronous].end() ? nullptr : &found->second;
}

Player* WindowModel::playerOf(const std::string& name) {
  const Record* record = first(name);
  return record == nullptr ? nullptr : player(record->synchronous, record->player);
}

void WindowModel::create(const Block& block) {
  const bool wantsFrameSize = !block.fullscreen && !block.useWindowSize;
  Pair position = block.position;
  Pair size = wantsFrameSize ? block.frame : block.windowSize;
  bool wasOpen = false;
  if (const Record* old = first(block.name)) {
    if (const Player* shown = player(old->synchronous, old->player)) {
      wasOpen = true;
      if (!shown->fullscreen) {
        position = shown->position;
        if (!wantsFrameSize) size = shown->size;
      }
      const bool sizeFits = !wantsFrameSize || (!shown->fullscreen && shown->size == block.frame);
      if (shown->frame == block.frame && shown->fullscreen == block.fullscreen &&
          old->synchronous == block.synchronous && sizeFits) {
        return;
      }
      players[old->synchronous].erase(old->player);
    }
    forget(block.name);
  }
  records.push_back({.name = block.name, .synchronous = block.synchronous, .frame = block.frame});
  if (!block.open && !wasOpen) return;
  records.back().player =
      add(block.synchronous, block.title, block.frame, position, size, block.fullscreen);
}

int WindowModel::add(bool synchronous, const std::string& title, Pair frame, Pair position,
                     Pair size, bool fullscreen) {
  if (isDisplayLost) return -1;
  if (fullscreen) {
    for (auto& [id, other] : players[synchronous]) leaveFullscreen(other);
  }
  Player player{.title = title, .frame = frame, .position = position, .size = size};
  player.askedPosition = position;
  player.askedSize = size;
  player.fullscreen = fullscreen;
  if (!synchronous) player.colour = 0;
  players[synchronous][nextId[synchronous]] = player;
  return nextId[synchronous]++;
}

void WindowModel::update(const Block& block) {
  Record* record = first(block.name);
  if (record != nullptr && record->frame == block.frame) {
    record->colour = block.colour;
    Player* shown = player(block.synchronous, record->player);
    if (shown != nullptr && shown->frame == block.frame) shown->colour = block.colour;
  }
  if (!block.synchronous) return;
  auto entry = players[true].begin();
  while (entry != players[true].end()) {
    bool isClosed = false;
    for (const Deed& deed : std::exchange(entry->second.unseen, {})) {
      isClosed = isClosed || see(entry->second, deed);
    }
    entry = isClosed ? players[true].erase(entry) : std::next(entry);
  }
}

void WindowModel::open(const std::string& name, Pair position, Pair size, bool useWindowSize) {
  Record* record = first(name);
  if (record == nullptr || playerOf(name) != nullptr) return;
  record->player = add(record->synchronous, record->name, record->frame, position,
                       useWindowSize ? size : record->frame, false);
}

// The library's own decision: a synchronous record closes the threaded player that has its id.
void WindowModel::destroy(const std::string& name) {
  const Record* record = first(name);
  if (record == nullptr) return;
  players[false].erase(record->player);
  forget(name);
}

void WindowModel::rename(const std::string& name, const std::string& newName,
                         const std::string& title) {
  Record* record = first(name);
  if (record == nullptr) return;
  record->name = newName;
  if (Player* threaded = player(false, record->player)) threaded->title = title;
}

void WindowModel::act(const std::string& name, const Deed& deed) {
  const Record* record = first(name);
  Player* shown = playerOf(name);
  if (shown == nullptr) return;
  if (deed.kind == Deed::Kind::kResize && shown->fullscreen) return;  // a user cannot
  if (record->synchronous) {
    shown->unseen.push_back(deed);
  } else if (see(*shown, deed)) {
    players[false].erase(record->player);
  }
}

void WindowModel::loseDisplay() {
  isDisplayLost = true;
  for (auto& server : players) server.clear();
}

bool WindowModel::see(Player& player, const Deed& deed) {
  if (deed.kind == Deed::Kind::kMove) player.position = deed.to;
  if (deed.kind == Deed::Kind::kResize) player.size = deed.to;
  if (deed.kind == Deed::Kind::kEscape) leaveFullscreen(player);
  return deed.kind == Deed::Kind::kClose;
}

void WindowModel::leaveFullscreen(Player& player) {
  if (!player.fullscreen) return;
  player.fullscreen = false;
  player.askedSize = player.size;
  player.colour.reset();
}

void WindowModel::forget(const std::string& name) {
  const Record* record = first(name);
  records.erase(records.begin() + (record - records.data()));
}

}  // namespace framesink::model
