// Runs framesink-play with the stub library and reports the outcome.
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
  int status = -1;  // exit status; -1 if a signal killed it
  int signal = 0;   // the signal that killed it; 0: none
  std::string out;
  std::string err;
  double seconds = 0;
  long peakKilobytes = 0;          // most memory in use
  std::vector<std::string> calls;  // lines of the stub's log
  std::string frame;               // planes of the last frame sent, one after another

  // The logged calls whose line begins with `function`.
  std::vector<std::string> callsOf(const std::string& function) const;
  std::string lastCall() const { return calls.empty() ? "" : calls.back(); }
};

// A temporary folder for one test; the destructor removes it.
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
  Environment environment = {};   // variables to set; an empty value unsets
  std::string input = {};         // file for standard input; empty: none
  bool terminal = false;          // standard error is a terminal
  bool stubLibrary = true;        // adds --library with the stub
  std::vector<int> ignored = {};  // signals that the player ignores at its start
  std::string folder = {};        // its working directory; empty: the test's
  // Seconds after the first frame at which the user closes all windows; negative: never.
  double closeAfter = -1;
  // Called repeatedly while the player runs, with its process id and the calls logged so far.
  std::function<void(pid_t, const std::vector<std::string>&)> meanwhile = {};
};

// Runs the player to its end; after 60 s it is killed and the test fails. Its display is SDL's
// dummy unless the setting says otherwise.
Outcome runPlayer(const Arguments& arguments, const Setting& setting = {});
Outcome runIn(const Environment& environment, const Arguments& arguments);

// Expects exactly one line on standard error, which begins with the player's name.
void expectOneLine(const Outcome& outcome, const std::string& part);

// Runs another program, looked up in PATH; true if it succeeds.
bool runProgram(const Arguments& line);

}  // namespace framesink::play
