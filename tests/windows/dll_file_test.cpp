// Checks the packed DLL as a file: its exports, its imports and instructions that it must not
// contain.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/child_process.hpp"
#include "unpacked_zip.hpp"

namespace framesink::test {
namespace {

using Names = std::set<std::string>;

std::string outputOf(const std::vector<std::string>& command) {
  ChildProcess program(command);
  const auto status = program.wait();
  EXPECT_TRUE(status && status->code == 0) << program.standardError();
  return program.standardOutput();
}

std::string packed(const std::string& file) {
  static const UnpackedZip zip;
  return zip.path("bin/" + file);
}

std::string objdump(const std::string& what, const std::string& file) {
  return outputOf({"x86_64-w64-mingw32-objdump", what, packed(file)});
}

// The first group of each match of `pattern`.
Names found(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  Names names;
  for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
    names.insert((*at)[1]);
  }
  return names;
}

const std::string& headers() {
  static const std::string text = objdump("-p", "framesink.dll");
  return text;
}

TEST(DllFile, ExportsElevenFunctionsAndThreeDataSymbolsUndecoratedAndNothingElse) {
  const std::string& all = headers();
  const std::size_t begin = all.find("[Ordinal/Name Pointer] Table");
  const std::string table = all.substr(begin, all.find("\n\n", begin) - begin);
  EXPECT_EQ(found(table, "\\[ *[0-9]+\\] (\\w+)"),
            (Names{"libCreate", "libStart", "libUpdate", "libOutputs", "libTerminate", "libDestroy",
                   "createVideoWindow", "destroyVideoWindow", "getWindowPosSize", "isPlayerOpen",
                   "renameVideoWindow", "framesink_version", "framesink_build_date",
                   "framesink_relative_path"}));
}

TEST(DllFile, KnowsItsName) {
  EXPECT_EQ(found(headers(), "\nName\\s+[0-9a-f]+ (\\S+)"), Names{"framesink.dll"});
}

Names neededBy(const std::string& file) { return found(objdump("-p", file), "DLL Name: (\\S+)"); }

TEST(DllFile, NeedsSdlAndPixkitAndTheSystemOnly) {
  const Names system{"KERNEL32.dll", "msvcrt.dll"};
  Names library = system;
  library.insert({"SDL2.dll", "pixkit.dll"});
  EXPECT_EQ(neededBy("framesink.dll"), library);
  EXPECT_EQ(neededBy("pixkit.dll"), system);
  EXPECT_EQ(neededBy("framesink-play.exe"), system);
  EXPECT_EQ(neededBy("SDL2.dll"),
            (Names{"ADVAPI32.dll", "GDI32.dll", "IMM32.dll", "KERNEL32.dll", "OLEAUT32.dll",
                   "SETUPAPI.dll", "SHELL32.dll", "USER32.dll", "VERSION.dll", "WINMM.dll",
                   "msvcrt.dll", "ole32.dll"}));
}

TEST(DllFile, TellsItsVersion) {
  const std::string resource = outputOf({"x86_64-w64-mingw32-windres", packed("framesink.dll")});
  EXPECT_EQ(found(resource, "VALUE \"((?:File|Product)Version\", \"[^\"]*)\""),
            (Names{"FileVersion\", \"" PROJECT_VERSION, "ProductVersion\", \"" PROJECT_VERSION}))
      << resource;
  std::string numbers = std::regex_replace(PROJECT_VERSION, std::regex("\\."), ", ") + ", 0";
  EXPECT_EQ(found(resource, "FILEVERSION (.*)"), Names{numbers});
}

// Windows aligns stacks to 16 bytes only, so an aligned move of a wider vector crashes now and
// then.
TEST(DllFile, MovesNoWideVectorThatMustBeAligned) {
  const std::string code = objdump("-d", "framesink.dll");
  EXPECT_FALSE(found(code, "(vmovdqu\\w* .*%[yz]mm)").empty());
  EXPECT_EQ(found(code, "(vmov(?:ap|dqa|nt)\\w* [^\n]*\\([^\n]*%[yz]mm)"), Names{});
  EXPECT_EQ(found(code, "(vmov(?:ap|dqa|nt)\\w* +%[yz]mm[0-9]+,[^\n]*\\()"), Names{});
}

}  // namespace
}  // namespace framesink::test
