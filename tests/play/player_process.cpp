#include "player_process.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

namespace framesink::play {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto kPatience = 60s;

std::string contentOf(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// Called in the child: executes the command `line`, which the kernel kills if the test dies.
[[noreturn]] void become(const Arguments& line) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  std::vector<char*> words;
  for (const std::string& word : line) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  execvp(words[0], words.data());
  _exit(127);
}

void redirect(int number, const fs::path& path, int flags) {
  const int file = open(path.c_str(), flags, 0600);
  if (file < 0 || dup2(file, number) < 0) _exit(126);
}

void applyEnvironment(const Environment& environment) {
  for (const auto& [name, value] : environment) {
    if (value.empty()) {
      unsetenv(name.c_str());
    } else {
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
}

// A pseudo-terminal. The child opens its far end.
class Terminal {
 public:
  Terminal() : master_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) {
      ADD_FAILURE() << "no pseudo-terminal";
    }
    farEnd_ = ptsname(master_);
    keptOpen_ = open(farEnd_.c_str(), O_RDWR | O_NOCTTY);
  }
  ~Terminal() {
    close(keptOpen_);
    close(master_);
  }
  const std::string& farEnd() const { return farEnd_; }
  void drain(std::string& text) {
    char bytes[4096];
    for (ssize_t got; (got = read(master_, bytes, sizeof bytes)) > 0;) {
      text.append(bytes, static_cast<std::size_t>(got));
    }
  }

 private:
  int master_;
  int keptOpen_;  // the far end, so that the text can be read after the child has ended
  std::string farEnd_;
};

}  // namespace

std::vector<std::string> Outcome::callsOf(const std::string& function) const {
  std::vector<std::string> found;
  for (const std::string& call : calls) {
    if (call.starts_with(function)) found.push_back(call);
  }
  return found;
}

Scratch::Scratch() {
  std::string pattern = (fs::temp_directory_path() / "framesink-play-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "no scratch folder";
  folder_ = pattern;
}

Scratch::~Scratch() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

std::string Scratch::write(const std::string& name, const std::string& content) const {
  std::ofstream(folder_ / name, std::ios::binary) << content;
  return (folder_ / name).string();
}

std::string Scratch::read(const std::string& name) const { return contentOf(folder_ / name); }

Outcome runPlayer(const Arguments& arguments, const Setting& setting) {
  const Scratch scratch;
  const fs::path log = scratch / "log";
  Terminal terminal;
  Environment environment{{"SDL_VIDEODRIVER", "dummy"}, {"STUB_LOG", log.string()}};
  for (const auto& [name, value] : setting.environment) environment[name] = value;
  Arguments line{FRAMESINK_PLAY_PROGRAM};
  line.insert(line.end(), arguments.begin(), arguments.end());
  if (setting.stubLibrary) line.insert(line.end(), {"--library", STUB_LIBRARY});

  const auto begin = Clock::now();
  const pid_t child = fork();
  if (child == 0) {
    for (const int number : setting.ignored) std::signal(number, SIG_IGN);
    redirect(0, setting.input.empty() ? "/dev/null" : setting.input, O_RDONLY);
    redirect(1, scratch / "out", O_WRONLY | O_CREAT);
    redirect(2, setting.terminal ? fs::path(terminal.farEnd()) : scratch / "err",
             O_WRONLY | O_CREAT | O_NOCTTY);
    applyEnvironment(environment);
    if (!setting.folder.empty() && chdir(setting.folder.c_str()) != 0) _exit(125);
    become(line);
  }

  Outcome outcome;
  int status = 0;
  Clock::time_point firstFrame = Clock::time_point::max();
  rusage used{};
  while (wait4(child, &status, WNOHANG, &used) == 0) {
    if (Clock::now() - begin > kPatience) {
      kill(child, SIGKILL);
      ADD_FAILURE() << "the player did not end in time";
    }
    terminal.drain(outcome.err);
    if (setting.meanwhile) setting.meanwhile(child, linesOf(contentOf(log)));
    if (setting.closeAfter >= 0 && fs::exists(scratch / "log.frame")) {
      firstFrame = std::min(firstFrame, Clock::now());
      if (Clock::now() - firstFrame >= std::chrono::duration<double>(setting.closeAfter)) {
        scratch.write("log.close", "");
      }
    }
    std::this_thread::sleep_for(5ms);
  }
  outcome.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
  outcome.peakKilobytes = used.ru_maxrss;
  if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  terminal.drain(outcome.err);
  outcome.out = scratch.read("out");
  outcome.err += scratch.read("err");
  outcome.calls = linesOf(contentOf(log));
  outcome.frame = scratch.read("log.frame");
  return outcome;
}

bool runProgram(const Arguments& line) {
  const pid_t child = fork();
  if (child == 0) become(line);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

Outcome runIn(const Environment& environment, const Arguments& arguments) {
  return runPlayer(arguments, Setting{.environment = environment});
}

void expectOneLine(const Outcome& outcome, const std::string& part) {
  using testing::AllOf, testing::HasSubstr, testing::StartsWith;
  EXPECT_THAT(outcome.err, AllOf(StartsWith("framesink-play: "), HasSubstr(part)));
  EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
}

}  // namespace framesink::play
