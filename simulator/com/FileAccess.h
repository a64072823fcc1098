#pragma once

#include "simulator/Simulator.h"

namespace simulator {

/// Documents as files of the system, under the names that the client gives.
TFileAccess SystemFiles();

/// The reason of the system's last failure, as SystemFiles reports it.
EError LastSystemError();

}  // namespace simulator
