#pragma once

namespace korvalin {

class Program;
class TerminationSignals;

/// Watches the lines and records those that end, without a window, until a signal asks the program to end;
/// then the open ones are recorded. The exit code: 1 when another program records into the data folder.
[[nodiscard]] int RecordUntilSignal(Program& program, const TerminationSignals& signals);

} // namespace korvalin
