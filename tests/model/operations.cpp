#include "operations.hpp"

#include <sstream>

namespace framesink::model {
namespace {

constexpr const char* kFormNames[kForms] = {
    "plain", "for other frames", "without a window", "synchronous", "sized", "full screen"};

}  // namespace

Block blockOf(int name, int form) {
  Block block{.name = kNames[name],
              .title = std::string("block ") + "AB"[name] + " " + kFormNames[form],
              .frame = {40, 30},
              .position = {100 + 10 * form, 50},
              .windowSize = {90, 70},
              .open = true,
              .colour = 0x204060U + 0x010203U * static_cast<std::uint32_t>(10 * form + name)};
  if (form == 1) block.frame = {30, 40};
  if (form == 2) block.open = false;
  if (form == 3) block.synchronous = true;
  if (form == 4) block.useWindowSize = true;
  if (form == 5) block.fullscreen = true;
  return block;
}

Sequence everyOperation() {
  Sequence operations;
  for (const int name : {0, 1}) {
    using Kind = Operation::Kind;
    for (int form = 0; form < kForms; ++form) operations.push_back({Kind::kCreate, name, form});
    for (const Kind kind :
         {Kind::kUpdate, Kind::kOpen, Kind::kOpenSized, Kind::kDestroy, Kind::kRename,
          Kind::kUserMoves, Kind::kUserResizes, Kind::kUserEscapes, Kind::kUserCloses}) {
      operations.push_back({kind, name});
    }
  }
  return operations;
}

std::ostream& operator<<(std::ostream& out, const Operation& operation) {
  if (operation.kind == Operation::Kind::kDisplayGoes) return out << "display goes";
  constexpr const char* kKinds[] = {"create",       "update",     "open",       "open sized",
                                    "destroy",      "rename",     "user moves", "user resizes",
                                    "user escapes", "user closes"};
  out << kKinds[static_cast<int>(operation.kind)] << " "
      << "AB"[operation.name];
  if (operation.kind == Operation::Kind::kCreate) out << " " << kFormNames[operation.form];
  return out;
}

std::string text(const Sequence& sequence) {
  std::ostringstream out;
  for (const Operation& operation : sequence) out << operation << "; ";
  return out.str();
}

}  // namespace framesink::model
