// A minimal program that shows a picture with another library, for the same tests as display_host.
#pragma once

#include <memory>

namespace framesink::test {

// Bytes of red, green and blue; row after row.
struct PeerPicture {
  unsigned width;
  unsigned height;
  unsigned number;

  unsigned char sample(int plane, unsigned row, unsigned column) const;
};

// A window of the other library; its destructor closes it. Each library defines open().
class PeerWindow {
 public:
  static std::unique_ptr<PeerWindow> open(const char* name, int x, int y,
                                          const PeerPicture& picture);
  virtual ~PeerWindow() = default;
  // Shows the picture, and lets the library handle its events.
  virtual void show(const PeerPicture& picture) = 0;
};

}  // namespace framesink::test
