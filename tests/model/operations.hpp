// The operations of hosts and users that the tests try in every order.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "window_model.hpp"

namespace framesink::model {

struct Operation {
  enum class Kind {
    kCreate,  // a block of the given form
    kUpdate,  // every block created under the name, one after another
    kOpen,
    kOpenSized,
    kDestroy,
    kRename,  // to the other name
    kUserMoves,
    kUserResizes,
    kUserEscapes,
    kUserCloses,
    kDisplayGoes,  // for good; concerns every name
  } kind;
  int name;      // index into kNames
  int form = 0;  // of the block that kCreate creates
};
std::ostream& operator<<(std::ostream& out, const Operation& operation);

// The names as the library stores them, and as hosts also write them.
inline constexpr const char* kNames[] = {"model A", "model B"};
inline constexpr const char* kWrittenNames[] = {"model\nA", "model\nB"};

// Each form differs from the plain one in one setting, and in the colour of its frames.
inline constexpr int kForms = 6;
Block blockOf(int name, int form);

using Sequence = std::vector<Operation>;
std::string text(const Sequence& sequence);

// Every operation on every name, except the loss of the display, which cannot be undone.
Sequence everyOperation();

}  // namespace framesink::model
