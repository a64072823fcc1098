#pragma once

#include <cstdint>
#include <string>

#include "platform/Text.h"

// Assemblies of any size for the simulated component, which need no disk: a root, its sub-assemblies, and 332
// parts in each of these, all under names of their own.

/// Full path of the root of an assembly with this many rows or up to 0.1 % less; a multiple of 1,000.
UnicodeString GeneratedAssembly(std::int64_t rows);

/// The document under any path of such an assembly, as the simulator reads it.
std::string LoadGenerated(const UnicodeString& path);
