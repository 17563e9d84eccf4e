// What hosts and users do to windows, in the forms that the tests try in every order.
#pragma once

#include <ostream>
#include <vector>

#include "window_model.hpp"

namespace framesink::model {

struct Operation {
  enum class Kind {
    kCreate,  // a block of some form
    kUpdate,  // all blocks that were created under the name, one after another
    kOpen,
    kOpenSized,
    kDestroy,
    kRename,  // to the other name
    kUserMoves,
    kUserResizes,
    kUserEscapes,
    kUserCloses,
  } kind;
  int name;      // of two
  int form = 0;  // of a block
};
std::ostream& operator<<(std::ostream& out, const Operation& operation);

// The names as the library keeps them, and as the host writes some of them.
inline constexpr const char* kNames[] = {"model A", "model B"};
inline constexpr const char* kWrittenNames[] = {"model\nA", "model\nB"};

// Forms of blocks: they differ in one thing each, and in the colour of their frames.
inline constexpr int kForms = 6;
Block blockOf(int name, int form);

// Every operation on every name.
std::vector<Operation> everyOperation();

}  // namespace framesink::model
