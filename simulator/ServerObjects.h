#pragma once

#include <memory>

#include "simulator/SimulatedObject.h"

/// A new server; all other objects are reached from it.
std::shared_ptr<TSimulatedObject> NewServer(TSimulator& simulator);
