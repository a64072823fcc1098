#pragma once

#include <memory>

#include "simulator/Simulator.h"

namespace simulator {

/// A simulator whose documents are files of the system and whose settings come from the variables
/// APPRENTICE_... Throws EError for a value that cannot be read and for a trace that cannot be opened: a
/// switch with a typing error must not pass for one that is not set.
std::unique_ptr<TSimulator> NewWorld();

}  // namespace simulator
