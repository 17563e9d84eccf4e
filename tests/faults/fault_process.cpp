#include "fault_process.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "support/x_server.hpp"

namespace framesink::test {
namespace {

constexpr std::chrono::seconds kLongestRun{30};
constexpr ExitStatus kOwnStatus{.code = 42, .signal = 0};

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The rest of each line that begins with `key` and a blank.
Lines valuesOf(const std::string& key, const Lines& lines) {
  Lines values;
  for (const std::string& line : lines) {
    if (line.rfind(key + " ", 0) == 0) values.push_back(line.substr(key.size() + 1));
  }
  return values;
}

Lines sorted(Lines lines) {
  std::sort(lines.begin(), lines.end());
  return lines;
}

Lines joined(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

}  // namespace

Lines onDummyDriver() { return {"SDL_VIDEODRIVER=dummy"}; }

Lines onSharedXServer() { return {"SDL_VIDEODRIVER=x11", "DISPLAY=" + sharedXServer().display()}; }

FaultProcess::FaultProcess(const std::string& server, const Lines& fault, Lines display)
    : host_(joined({SDL_FAULT_HOST, server}, fault),
            {.environment = environment(std::move(display))}) {
  for (const std::string& argument : fault) name_ += argument + " ";
}

Lines FaultProcess::environment(Lines display) const {
  display.push_back("XDG_RUNTIME_DIR=" + folder_.path());
  return display;
}

Outcome FaultProcess::outcome() {
  const auto status = host_.wait(kLongestRun);
  const Lines output = linesOf(host_.standardOutput());
  if (!status) {
    ADD_FAILURE() << name_ << "hangs";
  } else if (*status != kOwnStatus) {
    ADD_FAILURE() << name_ << "ends with " << status->code << ", signal " << status->signal << "\n"
                  << host_.standardOutput() << host_.standardError();
  } else {
    EXPECT_EQ(sorted(linesOf(host_.standardError())), sorted(valuesOf("message", output))) << name_;
  }
  return {.points = valuesOf("point", output),
          .faults = valuesOf("fault", output),
          .stop = valuesOf("stop", output),
          .call = valuesOf("call", output),
          .rest = valuesOf("rest", output)};
}

}  // namespace framesink::test
