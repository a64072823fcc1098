#pragma once

/// The program, called by the system's entry point. Returns the exit code.
int ProgramMain();
