// Named video windows: the tie between a window's name and the player that shows it.
//
// A record outlives its player, and the run. It holds the frame buffer into which the block
// converts each frame. Host thread only; no lock.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "display/geometry.hpp"
#include "display/player_id.hpp"
#include "display/sdl_server.hpp"
#include "display/window_request.hpp"

namespace framesink {

// Reported as position and size of a window that is not open.
inline constexpr std::int32_t kNotOpen = -2;

struct VideoWindow {
  std::string name;                             // the key, normalised
  bool synchronous = false;                     // its player lives in synchronousServer
  std::uint32_t frameWidth = 1;                 // pixels
  std::uint32_t frameHeight = 1;                // pixels
  std::unique_ptr<std::uint8_t[]> frameBuffer;  // frameBytes long, the block's target
  SdlServer* server = nullptr;                  // last used by openVideoWindow; nothing reads it
  PlayerId playerId = kNoPlayer;                // kept after the user closed the window

  Size frameSize() const { return {frameWidth, frameHeight}; }
};

// Every name or title that comes in is normalised: each line feed becomes a blank.
class VideoWindowRegistry {
 public:
  VideoWindowRegistry();
  ~VideoWindowRegistry();
  VideoWindowRegistry(const VideoWindowRegistry&) = delete;
  VideoWindowRegistry& operator=(const VideoWindowRegistry&) = delete;

  // The first record of that name; null when there is none. Allocates nothing.
  VideoWindow* findVideoWindow(std::string_view name) const;

  // Adds a record with a zeroed frame buffer. Throws std::bad_alloc.
  VideoWindow* registerVideoWindow(std::string_view name, Size frameSize, bool synchronous);

  // Forgets the first record of that name; its player stays as it is.
  void unregisterVideoWindow(std::string_view name);

  // The block's open or refresh: keeps the window of that name when nothing about it changes, else
  // registers the name anew and opens a player if asked to or if the window was open, in the place
  // and size where the user left it. May wait for the window. Throws std::bad_alloc.
  void setupVideoWindow(const WindowSetup& setup);

  // Raises the record's open player, or opens one. May wait for the window. Throws std::bad_alloc.
  void openVideoWindow(VideoWindow& window, const WindowRequest& request);

  // Closes the player and forgets the record. The player is always looked for in threadedServer,
  // whatever the record says: that is deliberate. A synchronous player stays on screen.
  void closeVideoWindow(std::string_view name);

  // The record takes newName, player and window take newTitle. The player is always looked for in
  // threadedServer, whatever the record says. May wait for the window. Throws std::bad_alloc, and
  // then renames nothing.
  void renameVideoWindowCore(std::string_view name, std::string_view newName,
                             std::string_view newTitle);

  // Four times kNotOpen when the record has no open player. May wait for the window.
  void getVideoWindowPosSize(const VideoWindow& window, std::int32_t position[2],
                             std::int32_t size[2]) const;

  bool isVideoWindowOpen(const VideoWindow& window) const;

  // By name; 0, 0, null and kNoPlayer for an unknown one. Dormant: nothing in the library calls them.
  std::uint32_t frameWidthOf(std::string_view name) const;
  std::uint32_t frameHeightOf(std::string_view name) const;
  std::uint8_t* frameBufferOf(std::string_view name) const;
  PlayerId playerIdOf(std::string_view name) const;

 private:
  void forget(const VideoWindow* window);
  PlayerId createPlayerForVideoWindow(const VideoWindow& window, WindowRequest request);

  // Ordered by address, so that a name plays no part in the order.
  using Windows = std::set<std::unique_ptr<VideoWindow>>;
  Windows* const windows_;  // owned
};

// The registry of the process: made at load, destroyed at unload.
VideoWindowRegistry& videoWindowRegistry();

}  // namespace framesink
