#pragma once

#include "simulator/Simulator.h"

namespace simulator {

/// Documents as files of the system, under the names that the client gives.
TFileAccess SystemFiles();

}  // namespace simulator
