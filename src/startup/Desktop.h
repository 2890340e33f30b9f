#pragma once

namespace korvalin {

/// Runs the program with its windows on this system's back ends until it ends; returns the process's exit
/// code.
int RunDesktop(int argc, char** argv);

} // namespace korvalin
