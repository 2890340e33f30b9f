#pragma once

#include <string>

namespace korvalin {

class Program;

/// Whether something has the alias: a record, a monitored line, or a line that was there before; an empty one
/// stands for all. Says on standard error when nothing has, with the alias that is most like it. Afterwards a
/// known alias has an index. The statistics were loaded before.
bool IsKnownAlias(Program& program, const std::string& alias);

} // namespace korvalin
