#include "wine.hpp"

#include <gtest/gtest.h>

#include "support/x_server.hpp"

namespace framesink::test {
namespace {

class Wine : public testing::Environment {
 public:
  void SetUp() override {
    sharedXServer();
    run("--start");
  }
  void TearDown() override { run("--stop"); }

 private:
  static void run(const std::string& what) {
    ChildProcess wine({HOST_RUNNER, what});
    const auto status = wine.wait(kWineDeadline);
    ASSERT_TRUE(status && status->code == 0) << "wine.sh " << what << ": " << wine.standardError();
  }
};

[[maybe_unused]] const auto* const wine = testing::AddGlobalTestEnvironment(new Wine);

}  // namespace

ChildProcess startOnWindows(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<std::string> command{HOST_RUNNER, program};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return ChildProcess(command);
}

}  // namespace framesink::test
