#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/Simulator.h"
#include "tests/support/TestMachine.h"

/// The whole program on the headless back end, with the simulated component on the machine's disk. Trace
/// lines go into Trace; a fresh simulator is made for each run.
class TProgramTest : public TMachineTest {
 protected:
  /// Runs the program with these arguments until it ends or nothing more can happen; returns what the user
  /// saw.
  std::vector<std::string> Run(TextView arguments);

  /// Whether one of the lines holds this part.
  static bool Has(const std::vector<std::string>& lines, const std::string& part);

  /// Registers a fresh simulator on the machine, as Run does, with an empty trace.
  void StartComponent();

  /// The last run's calls, without the creations and releases of objects.
  std::vector<std::string> Calls() const;
  int LiveObjects() const { return fSimulator->LiveObjects(); }

  TSimulatorSettings Simulation;
  std::int32_t RefuseCreation = 0;  ///< with this HRESULT; 0: the component can be created
  std::vector<std::string> Trace;
  UnicodeString ReasonAtWork;  ///< what kept a user from signing out when the component was created last

 private:
  std::unique_ptr<TSimulator> fSimulator;
};

/// A document whose fourth property set holds `properties`: the elements of a JSON array.
std::string DocumentWith(const std::string& properties, const std::string& more = {});
/// One element of it.
std::string TextProperty(const std::string& name, const std::string& value);
