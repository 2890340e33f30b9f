#include "cli/KnownAliases.h"

#include "base/NearestText.h"
#include "base/Text.h"
#include "program/Program.h"

#include <fmt/format.h>

#include <cstdio>

namespace korvalin {
namespace {

// A line that neither has a record nor is up now has left its alias in the settings.
void LearnStoredLines(Program& program) {
    constexpr std::string_view ending = Keys::Alias.After;
    for (const std::string& name : program.settings.StoredNames()) {
        if (name.size() > ending.size() && EndsWithNoCase(name, ending))
            program.aliases.GetAlias(name.substr(0, name.size() - ending.size()));
    }
}

} // namespace

bool IsKnownAlias(Program& program, const std::string& alias) {
    Aliases& aliases = program.aliases;
    if (alias.empty() || aliases.AliasIndex(alias) != 0) return true;
    LearnStoredLines(program);
    if (aliases.AliasIndex(alias) != 0) return true;
    std::vector<std::string> known;
    for (std::size_t i = 1; i <= aliases.AliasCount(); ++i)
        known.push_back(aliases.Alias(i).Alias);
    fmt::print(stderr, "No line or record has the alias {}.", EscapeControls(alias));
    if (!known.empty()) fmt::print(stderr, " Did you mean {}?", EscapeControls(NearestText(known, alias)));
    fmt::print(stderr, "\n");
    return false;
}

} // namespace korvalin
