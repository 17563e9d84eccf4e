// The DLL as a file: what it offers, what it asks for, and what its code may not hold.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "support/child_process.hpp"

namespace framesink::test {
namespace {

using Names = std::set<std::string>;

std::string objdump(const std::string& what, const std::string& file) {
  ChildProcess program({"x86_64-w64-mingw32-objdump", what, HOST_FOLDER "/" + file});
  const auto status = program.wait();
  EXPECT_TRUE(status && status->code == 0) << program.standardError();
  return program.standardOutput();
}

// The first group of every match.
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

TEST(DllFile, NeedsSdlAndPixkitAndTheSystemOnly) {
  EXPECT_EQ(found(headers(), "DLL Name: (\\S+)"),
            (Names{"KERNEL32.dll", "msvcrt.dll", "SDL2.dll", "pixkit.dll"}));
  EXPECT_EQ(found(objdump("-p", "pixkit.dll"), "DLL Name: (\\S+)"),
            (Names{"KERNEL32.dll", "msvcrt.dll"}));
}

TEST(DllFile, HasAVersionResource) {
  EXPECT_NE(headers().find("Entry: ID: 0x000010"), std::string::npos) << headers();
}

// Stacks are aligned to 16 bytes: a move of more that wants alignment ends the process now and then.
TEST(DllFile, MovesNoWideVectorThatMustBeAligned) {
  const std::string code = objdump("-d", "framesink.dll");
  EXPECT_FALSE(found(code, "(vmovdqu\\w* .*%[yz]mm)").empty());
  EXPECT_EQ(found(code, "(vmov(?:ap|dqa|nt)\\w* [^\n]*\\([^\n]*%[yz]mm)"), Names{});
  EXPECT_EQ(found(code, "(vmov(?:ap|dqa|nt)\\w* +%[yz]mm[0-9]+,[^\n]*\\()"), Names{});
}

}  // namespace
}  // namespace framesink::test
