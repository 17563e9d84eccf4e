// Reads docs/pixel-formats.md and checks every figure on it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "convert/kernel_selection.hpp"
#include "convert/planes_to_yuy2.hpp"
#include "convert/sample_scaling.hpp"
#include "pixkit/pixkit.h"
#include "simd/colour_constants.hpp"

namespace framesink {
namespace {

// ---- the page -----------------------------------------------------------------------------------

std::string pageText() {
  std::ifstream file(PIXEL_FORMATS_PAGE);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

enum class Part { kProse, kFenced };

// The lines inside the page's fences (drawings and formulas), or those outside them.
std::vector<std::string> linesOf(Part part) {
  std::vector<std::string> lines;
  bool fenced = false;
  for (const std::string& line : linesOf(pageText())) {
    const bool fence = line.starts_with("```");
    if (fence) fenced = !fenced;
    if (!fence && fenced == (part == Part::kFenced)) lines.push_back(line);
  }
  return lines;
}

using Matches = std::vector<std::smatch>;

// All matches of the expression. They point into `text`, which must outlive them.
Matches matchesIn(const std::string& text, const std::string& expression) {
  const std::regex regex(expression);
  return {std::sregex_iterator(text.begin(), text.end(), regex), {}};
}

// The cells of a table row, without back quotes.
std::vector<std::string> cellsOf(const std::string& row) {
  std::vector<std::string> cells;
  for (const std::smatch& cell : matchesIn(row, R"(\|\s*`?([^|`]*?)`?\s*(?=\|))")) {
    cells.push_back(cell[1]);
  }
  return cells;
}

// The rows of the table whose header starts with `head`, without the header and the rule below it.
std::vector<std::vector<std::string>> tableBelow(const std::string& head) {
  const std::vector<std::string> lines = linesOf(pageText());
  auto line = std::ranges::find_if(lines, [&](const auto& text) { return text.starts_with(head); });
  std::vector<std::vector<std::string>> rows;
  if (line == lines.end()) return rows;
  for (line += 2; line != lines.end() && line->starts_with("|"); ++line) {
    rows.push_back(cellsOf(*line));
  }
  return rows;
}

// ---- one sample ---------------------------------------------------------------------------------

double number(const std::string& text) {
  if (text == "NaN") return std::numeric_limits<double>::quiet_NaN();
  return std::stod(text);  // "+inf" and "-inf" too
}

struct Type {
  std::uint32_t (*scaled)(double);
  double min;
  double max;
  bool isWhole;
  double smallest;
  double largest;
};

template <std::uint32_t Id>
Type typeOf() {
  using Sample = SampleOf<Id>;
  using Limits = std::numeric_limits<Sample>;
  return {[](double value) { return scaleTo8Bit<Id>(static_cast<Sample>(value)); },
          static_cast<double>(static_cast<Sample>(videoTraits<Id>::min)),
          static_cast<double>(static_cast<Sample>(videoTraits<Id>::max)),
          Limits::is_integer,
          static_cast<double>(Limits::lowest()),
          static_cast<double>(Limits::max())};
}

const std::map<std::string, Type>& types() {
  static const std::map<std::string, Type> all{
      {"double", typeOf<kDouble>()},  {"single", typeOf<kSingle>()},
      {"int8", typeOf<kInt8>()},      {"uint8", typeOf<kUint8>()},
      {"int16", typeOf<kInt16>()},    {"uint16", typeOf<kUint16>()},
      {"int32", typeOf<kInt32>()},    {"uint32", typeOf<kUint32>()},
      {"boolean", typeOf<kBoolean>()}};
  return all;
}

bool holds(const Type& type, double value) {
  if (!type.isWhole) return true;
  return value == std::floor(value) && value >= type.smallest && value <= type.largest;
}

TEST(NaturalPixelFormatsPage, TheTableOfValuesIsTrue) {
  const std::vector<std::string> lines = linesOf(pageText());
  const auto head =
      std::ranges::find_if(lines, [](const auto& line) { return line.starts_with("| type |"); });
  ASSERT_NE(head, lines.end());
  const std::vector<std::string> columns = cellsOf(*head);
  ASSERT_EQ(columns.size(), 10U);
  const auto rows = tableBelow("| type |");
  EXPECT_EQ(rows.size(), types().size());
  for (const auto& row : rows) {
    ASSERT_EQ(row.size(), columns.size());
    ASSERT_TRUE(types().contains(row[0])) << row[0];
    const Type& type = types().at(row[0]);
    EXPECT_EQ(number(row[1]), type.min) << row[0];
    EXPECT_EQ(number(row[2]), type.max) << row[0];
    for (std::size_t i = 3; i < columns.size(); ++i) {
      const double sample = number(columns[i]);
      const std::string expected = holds(type, sample) ? std::to_string(type.scaled(sample)) : "-";
      EXPECT_EQ(row[i], expected) << row[0] << " " << columns[i];
    }
  }
}

// The page gives samples in the form `uint16 4095 -> 16`.
TEST(NaturalPixelFormatsPage, EverySampleInTheTextBecomesWhatThePageSays) {
  const std::string page = pageText();
  const Matches samples = matchesIn(page, R"(`([a-z0-9]+) (\S+) -> (\d+)`)");
  EXPECT_GE(samples.size(), 20U);
  EXPECT_EQ(samples.size(), matchesIn(page, "->").size());
  for (const std::smatch& sample : samples) {
    ASSERT_TRUE(types().contains(sample[1])) << sample.str();
    const Type& type = types().at(sample[1]);
    EXPECT_TRUE(holds(type, number(sample[2]))) << sample.str();
    EXPECT_EQ(sample[3], std::to_string(type.scaled(number(sample[2])))) << sample.str();
  }
}

// Computes the formula with the constants that the page prints in it.
TEST(NaturalPixelFormatsPage, TheFormulaIsTheRule) {
  const std::string page = pageText();
  const Matches formulas = matchesIn(
      page,
      R"(value = clamp\(truncate\((\d+) x \(sample - min\) / \(max - min\) \+ ([.\d]+)\)\)\n)");
  ASSERT_EQ(formulas.size(), 1U);
  const auto top = static_cast<float>(number(formulas[0][1]));
  const double half = number(formulas[0][2]);
  for (float sample = -0.1F; sample < 1.1F; sample += 0.0001F) {
    const float t = (sample - 0.0F) / (1.0F - 0.0F) * top;
    const auto value = static_cast<std::int32_t>(static_cast<double>(t) + half);
    ASSERT_EQ(scaleTo8Bit<kSingle>(sample), static_cast<std::uint32_t>(std::clamp(value, 0, 255)))
        << sample;
  }
}

// ---- colours ------------------------------------------------------------------------------------

using Triple = std::array<std::int32_t, 3>;

Triple tripleIn(const std::string& cell) {
  Triple triple{};
  std::istringstream stream(cell);
  char comma = 0;
  stream >> triple[0] >> comma >> triple[1] >> comma >> triple[2];
  EXPECT_TRUE(stream) << cell;
  return triple;
}

// What kernels make of a pair of pixels of that colour.
Triple rgbOf(const Triple& ycbcr) {
  const std::uint8_t y[]{static_cast<std::uint8_t>(ycbcr[0]), static_cast<std::uint8_t>(ycbcr[0])};
  const auto cb = static_cast<std::uint8_t>(ycbcr[1]);
  const auto cr = static_cast<std::uint8_t>(ycbcr[2]);
  std::uint8_t out[6];
  selectConversionKernel(kInputYcbcr422, kOutputRgbPlanes, kUint8)(y, &cb, &cr, out, 2, 1, 1);
  return {out[0], out[2], out[4]};
}

Triple ycbcrOf(const Triple& rgb) {
  std::array<std::uint8_t, 3> planes{static_cast<std::uint8_t>(rgb[0]),
                                     static_cast<std::uint8_t>(rgb[1]),
                                     static_cast<std::uint8_t>(rgb[2])};
  std::uint8_t out[4];
  selectConversionKernel(kInputRgb, kOutputYuy2, kUint8)(&planes[0], &planes[1], &planes[2], out, 1,
                                                         1, 1);
  return {out[0], out[1], out[3]};
}

void expectColours(const std::string& head, Triple (*convert)(const Triple&)) {
  const auto rows = tableBelow(head);
  EXPECT_GE(rows.size(), 5U) << head;
  for (const auto& row : rows) {
    ASSERT_EQ(row.size(), 2U);
    EXPECT_EQ(tripleIn(row[1]), convert(tripleIn(row[0]))) << row[0];
  }
}

TEST(PixelFormatsPage, TheTableOfColoursToRgbIsTrue) { expectColours("| Y, Cb, Cr |", rgbOf); }
TEST(PixelFormatsPage, TheTableOfColoursToYcbcrIsTrue) { expectColours("| R, G, B |", ycbcrOf); }

std::string factor(std::int32_t value) {
  return (value < 0 ? "- " : "+ ") + std::to_string(std::abs(value));
}

void expectOnPage(const std::string& line) {
  EXPECT_EQ(std::ranges::count(linesOf(Part::kFenced), line), 1) << line;
}

TEST(PixelFormatsPage, TheFormulaToRgbHasTheKernelsFactors) {
  const YcbcrToRgbConstants& k = ycbcrToRgbConstants;
  const std::string cb = " (Cb - " + std::to_string(k.cbOffset) + ")";
  const std::string cr = " (Cr - " + std::to_string(k.crOffset) + ")";
  expectOnPage("base = " + std::to_string(k.luma) + " (Y - " + std::to_string(k.lumaOffset) +
               ") + 8192");
  expectOnPage("R = (base " + factor(k.redFromCr) + cr + ") >> 14");
  expectOnPage("G = (base " + factor(k.greenFromCb) + cb + " " + factor(k.greenFromCr) + cr +
               ") >> 14");
  expectOnPage("B = (base " + factor(k.blueFromCb) + cb + ") >> 14");
}

std::string row(const std::string& name, const Triple& factors, std::int32_t offset) {
  return name + " = ((" + std::to_string(factors[0]) + " R " + factor(factors[1]) + " G " +
         factor(factors[2]) + " B + 128) >> 8) + " + std::to_string(offset);
}

TEST(PixelFormatsPage, TheFormulaToYcbcrHasTheKernelsFactors) {
  const RgbToYcbcrConstants& k = rgbToYcbcrConstants;
  expectOnPage(row("Y ", {k.lumaFromRed, k.lumaFromGreen, k.lumaFromBlue}, k.lumaOffset));
  expectOnPage(row("Cb", {k.cbFromRed, k.cbFromGreen, k.cbFromBlue}, k.cbOffset));
  expectOnPage(row("Cr", {k.crFromRed, k.crFromGreen, k.crFromBlue}, k.crOffset));
}

// ---- memory -------------------------------------------------------------------------------------

std::vector<std::string> wordsAfter(const std::string& pattern) {
  const std::string page = pageText();
  const Matches lines = matchesIn(page, pattern);
  if (lines.size() != 1) return {};
  std::istringstream stream(lines[0][1]);
  return {std::istream_iterator<std::string>(stream), {}};
}

// Fills a plane as the drawing says and looks for each sample where the kernel reads that pixel.
TEST(PixelFormatsPage, TheDrawingOfAPlaneIsTrue) {
  const auto samples = wordsAfter(R"(sample ([ \d]+)\n)");
  const auto pixels = wordsAfter(R"(pixel ([ \d]+)\n)");
  ASSERT_EQ(samples, (std::vector<std::string>{"0", "1", "2", "3", "4", "5"}));
  ASSERT_EQ(pixels.size(), 6U);
  std::vector<std::uint8_t> plane(6);
  for (std::size_t i = 0; i < 6; ++i) {
    plane[std::stoul(samples[i])] = static_cast<std::uint8_t>(std::stoul(pixels[i]));
  }
  std::vector<std::uint8_t> packed(16);  // row by row; the luma byte of a pixel holds its value
  const std::vector<std::uint8_t> chroma(4);
  plane.resize(8);
  selectConversionKernel(kInputYcbcr422, kOutputYuy2, kUint8)(
      plane.data(), chroma.data(), chroma.data(), packed.data(), 3, 2, 1);
  const std::vector<std::string> picture = wordsAfter(R"(\n(0\d 0\d 0\d) .*\n)");
  const std::vector<std::string> lowerRow = wordsAfter(R"(\n(1\d 1\d 1\d) .*\n)");
  ASSERT_EQ(picture.size(), 3U);
  ASSERT_EQ(lowerRow.size(), 3U);
  for (std::size_t column = 0; column < 3; ++column) {
    EXPECT_EQ(packed[column / 2 * 4 + column % 2 * 2], std::stoi(picture[column]));
    EXPECT_EQ(packed[8 + column / 2 * 4 + column % 2 * 2], std::stoi(lowerRow[column]));
  }
}

// In the drawing, Y13 is the luma of row 1, column 3.
TEST(PixelFormatsPage, TheDrawingOfPackedYuy2IsTrue) {
  const auto positions = wordsAfter(R"(byte ([ \d]+)\n)");
  const auto names = wordsAfter(R"(\n +(Y00 [^\n]+)\n)");
  ASSERT_EQ(positions.size(), 16U);
  ASSERT_EQ(names.size(), 16U);
  std::vector<std::uint8_t> luma(8), cb(4), cr(4), packed(16);
  for (std::uint8_t column = 0; column < 4; ++column) {
    for (std::uint8_t line = 0; line < 2; ++line) {
      luma[column * 2 + line] = static_cast<std::uint8_t>(10 * line + column);
      cb[column / 2 * 2 + line] = static_cast<std::uint8_t>(100 + 10 * line + column / 2 * 2);
      cr[column / 2 * 2 + line] = static_cast<std::uint8_t>(200 + 10 * line + column / 2 * 2);
    }
  }
  selectConversionKernel(kInputYcbcr422, kOutputYuy2, kUint8)(luma.data(), cb.data(), cr.data(),
                                                              packed.data(), 4, 2, 1);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const int value = packed[std::stoul(positions[i])];
    const std::string place = (value % 100 < 10 ? "0" : "") + std::to_string(value % 100);
    const std::string kind = value < 100 ? "Y" : value < 200 ? "Cb" : "Cr";
    EXPECT_EQ(names[i], kind + place) << "byte " << positions[i];
  }
}

// ---- nothing else -------------------------------------------------------------------------------

// The tests above check tables, samples and drawings completely. The rest of the page may hold only
// these figures, which are names or repeat checked ones.
TEST(PixelFormatsPage, NoOtherFigureIsOnThePage) {
  std::string rest;
  for (const std::string& line : linesOf(Part::kProse)) {
    if (!line.starts_with("|")) rest += line + "\n";
  }
  for (const char* known : {"`[a-z0-9]+ \\S+ -> \\d+`",

                            "value from 0 \\(black\\) to 255 \\(white\\)",

                            "YUY2",
                            "BT\\.601",
                            "4:2:2",
                            "A value that leaves 32 bits",
                            "It holds 0 to 255; floats range from 0 to 1:",
                            "Divide by 255,",
                            "12-bit camera",
                            "end at 4095, uint16 at 65535:",
                            "Multiply by 16:",
                            "samples of 10 bits by 64:",
                            "mask of 0 and 255 is fine, my mask of 0 and 1 is",
                            "luma from 16 to 235, chroma from 16 to 240 around 128\\.",
                            "to 8 bits first",
                            "clamped to 0\\.\\.255;",
                            "White is 234, not 235: 255 steps are divided by 256\\.",
                            "and chroma 128\\.",
                            "A frame 3 wide and 2 high,",
                            "A frame 4 wide and 2 high:",
                            "u?int(8|16|32)"}) {
    rest = std::regex_replace(rest, std::regex(known), "");
  }
  EXPECT_TRUE(matchesIn(rest, "\\d").empty()) << rest;
}

// Fails if a fence holds a line that none of the tests above reads.
TEST(PixelFormatsPage, NoOtherDrawingOrFormulaIsOnThePage) {
  const std::vector<std::string> lines = linesOf(Part::kFenced);
  EXPECT_FALSE(lines.empty());
  for (const std::string& line : lines) {
    EXPECT_TRUE(std::regex_match(
        line,
        std::regex(R"( *(value = |base = |[RGB] = |(Y |Cb|Cr) = |byte |Y00 |(\d\d ){3} ).*)")))
        << line;
  }
}

}  // namespace
}  // namespace framesink
