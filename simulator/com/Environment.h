#pragma once

#include "simulator/Simulator.h"

namespace simulator {

/// The settings that the variables APPRENTICE_... ask for. Throws EError for a value that cannot be read and
/// for a trace that cannot be opened: a switch with a typing error must not pass for one that was not set.
TSimulatorSettings SettingsFromEnvironment();

}  // namespace simulator
