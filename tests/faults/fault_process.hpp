// A host whose SDL fails, in a process of its own.
#pragma once

#include <string>
#include <vector>

#include "support/child_process.hpp"
#include "support/temporary_folder.hpp"

namespace framesink::test {

using Lines = std::vector<std::string>;

// What one run of a host reported. See sdl_fault_host.cpp.
struct Outcome {
  Lines points;
  Lines faults;
  Lines stop;
  Lines call;
  Lines rest;
};

// The variables with which SDL has a display.
Lines onDummyDriver();
Lines onSharedXServer();

class FaultProcess {
 public:
  // Starts sdl_fault_host with that server and those further arguments.
  FaultProcess(const std::string& server, const Lines& fault, Lines display);

  // Waits for the host's end. Fails the test if the host hangs, ends badly or prints the wrong
  // messages.
  Outcome outcome();

 private:
  Lines environment(Lines display) const;

  std::string name_;  // the fault
  const TemporaryFolder folder_;
  ChildProcess host_;
};

}  // namespace framesink::test
