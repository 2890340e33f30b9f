#pragma once

namespace korvalin {

class Program;

enum class LinesFormat { Table, Json };

/// Prints the monitored lines with their rates: once, after the second that a rate needs, or every second for
/// ever.
void PrintLines(Program& program, LinesFormat format, bool watch);

} // namespace korvalin
