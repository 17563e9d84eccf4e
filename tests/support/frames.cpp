#include "support/frames.hpp"

#include <random>

namespace framesink::test {

Frame noiseFrame(Size size, std::uint32_t seed) {
  std::mt19937 random(seed);
  Frame frame{size, std::vector<std::uint8_t>(std::size_t{3} * size.width * size.height)};
  for (auto& sample : frame.planes) sample = static_cast<std::uint8_t>(random() >> 24);
  return frame;
}

Frame plainFrame(Size size, std::uint32_t colour) {
  const std::size_t pixels = std::size_t{size.width} * size.height;
  Frame frame{size, {}};
  for (const int shift : {16, 8, 0}) {
    frame.planes.insert(frame.planes.end(), pixels, static_cast<std::uint8_t>(colour >> shift));
  }
  return frame;
}

Image pictureOf(const Frame& frame) {
  const auto [width, height] = frame.size;
  const std::size_t plane = std::size_t{width} * height;
  Image image{static_cast<int>(width), static_cast<int>(height), {}};
  for (std::size_t row = 0; row < height; ++row) {
    for (std::size_t column = 0; column < width; ++column) {
      const std::uint8_t* sample = frame.data() + column * height + row;
      image.pixels.push_back(sample[0] * 0x10000U + sample[plane] * 0x100U + sample[2 * plane]);
    }
  }
  return image;
}

Image enlarged(const Image& image, int factor) {
  Image large{image.width * factor, image.height * factor, {}};
  for (int y = 0; y < large.height; ++y) {
    for (int x = 0; x < large.width; ++x) large.pixels.push_back(image.at(x / factor, y / factor));
  }
  return large;
}

Image letterboxed(const Image& inner, int width, int height) {
  const int left = (width - inner.width) / 2;
  const int top = (height - inner.height) / 2;
  Image image{width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width * height))};
  for (int y = 0; y < inner.height; ++y) {
    for (int x = 0; x < inner.width; ++x) {
      image.pixels[static_cast<std::size_t>((top + y) * width + left + x)] = inner.at(x, y);
    }
  }
  return image;
}

}  // namespace framesink::test
