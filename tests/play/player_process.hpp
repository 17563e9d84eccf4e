// Runs framesink-play against the stub library and tells what came of it.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace framesink::play {

using Arguments = std::vector<std::string>;
using Environment = std::map<std::string, std::string>;

// How a run ended and what it left behind.
struct Outcome {
  int status = -1;  // of a normal end
  int signal = 0;   // that killed it
  std::string out;
  std::string err;
  double seconds = 0;
  long peakKilobytes = 0;          // of its memory
  std::vector<std::string> calls;  // lines of the stub's log
  std::string frame;               // planes of the last frame sent, one after another

  // The logged calls whose line begins with `function`.
  std::vector<std::string> callsOf(const std::string& function) const;
  std::string lastCall() const { return calls.empty() ? "" : calls.back(); }
};

// A folder of the test's own, removed with it.
class Scratch {
 public:
  Scratch();
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return folder_ / name; }
  std::string write(const std::string& name, const std::string& content) const;
  std::string read(const std::string& name) const;

 private:
  std::filesystem::path folder_;
};

struct Setting {
  Environment environment = {};   // replaces what it names; an empty value unsets
  std::string input = {};         // file for standard input; empty: none
  bool terminal = false;          // standard error is a terminal
  bool stubLibrary = true;        // adds --library with the stub
  std::vector<int> ignored = {};  // signals ignored from the start
  std::string folder = {};        // that it works in; empty: the test's
  // Seconds after the first frame at which the user closes all windows; negative: never.
  double closeAfter = -1;
  // Called again and again while the player runs, with its id and the calls so far.
  std::function<void(pid_t, const std::vector<std::string>&)> meanwhile = {};
};

// Runs the player to its end; after 60 s it is killed and the test fails. Its display is SDL's
// dummy unless the setting says otherwise.
Outcome runPlayer(const Arguments& arguments, const Setting& setting = {});
Outcome runIn(const Environment& environment, const Arguments& arguments);

// The player's errors are one line that begins with its name.
void expectOneLine(const Outcome& outcome, const std::string& part);

// Runs another program, found on the path; true when it succeeds.
bool runProgram(const Arguments& line);

}  // namespace framesink::play
