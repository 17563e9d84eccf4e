// Named video windows: connects a window's name with the player that shows it.
//
// A record outlives its player and the run. It holds the frame buffer into which the block converts
// each frame. Host threads only, one export at a time; no lock.
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
  bool synchronous = false;                     // its player is the synchronous server's
  std::uint32_t frameWidth = 1;                 // pixels
  std::uint32_t frameHeight = 1;                // pixels
  std::unique_ptr<std::uint8_t[]> frameBuffer;  // frameBytes long, the block's target
  SdlServer* server = nullptr;                  // set by openVideoWindow; nothing reads it
  PlayerId playerId = kNoPlayer;                // kept after the user closed the window

  Size frameSize() const { return {frameWidth, frameHeight}; }
};

// Every name and title passed in is normalised: each line feed becomes a space.
class VideoWindowRegistry {
 public:
  VideoWindowRegistry();
  ~VideoWindowRegistry();
  VideoWindowRegistry(const VideoWindowRegistry&) = delete;
  VideoWindowRegistry& operator=(const VideoWindowRegistry&) = delete;

  // The first record of that name, or null. Allocates nothing.
  VideoWindow* findVideoWindow(std::string_view name) const;

  // Adds a record with a zeroed frame buffer. Throws std::bad_alloc.
  VideoWindow* registerVideoWindow(std::string_view name, Size frameSize, bool synchronous);

  // Removes the first record of that name; its player stays as it is.
  void unregisterVideoWindow(std::string_view name);

  // Sets up a block's window. Keeps an open window of that name that matches the request. Otherwise
  // registers the name anew, and opens a new window if openNow is set or the old one was open.
  // Unless the old one was full screen, the new one opens where the user left it, in the same size.
  // May wait for the window. Throws std::bad_alloc.
  void setupVideoWindow(const WindowSetup& setup);

  // Raises the record's open player, or opens one. May wait for the window. Throws std::bad_alloc.
  void openVideoWindow(VideoWindow& window, WindowRequest request);

  // Closes the player and removes the record. Deliberately looks the player's id up in the threaded
  // server only, even for a synchronous record, so a synchronous player stays on screen.
  void closeVideoWindow(std::string_view name);

  // Gives newName to the record and newTitle to its player's window. Deliberately looks the
  // player's id up in the threaded server only, even for a synchronous record. May wait for the
  // window. Throws std::bad_alloc, and then renames nothing.
  void renameVideoWindowCore(std::string_view name, std::string_view newName,
                             std::string_view newTitle);

  // Sets all four values to kNotOpen if the record has no open player. May wait for the window.
  void getVideoWindowPosSize(const VideoWindow& window, std::int32_t position[2],
                             std::int32_t size[2]) const;

  bool isVideoWindowOpen(const VideoWindow& window) const;

  // Look-ups by name; an unknown name yields 0, 0, null and kNoPlayer. Dormant: nothing in the
  // library calls them.
  std::uint32_t frameWidthOf(std::string_view name) const;
  std::uint32_t frameHeightOf(std::string_view name) const;
  std::uint8_t* frameBufferOf(std::string_view name) const;
  PlayerId playerIdOf(std::string_view name) const;

 private:
  void forget(const VideoWindow* window);
  PlayerId createPlayerForVideoWindow(const VideoWindow& window, WindowRequest request);

  // Ordered by address, not by name, because a record can be renamed.
  using Windows = std::set<std::unique_ptr<VideoWindow>>;
  Windows* const windows_;  // owned
};

// The registry of the process: made at load, destroyed at unload.
VideoWindowRegistry& videoWindowRegistry();

}  // namespace framesink
