#include "platform/linux/store/DesktopEntry.h"

#include <algorithm>
#include <functional>
#include <map>

namespace korvalin {
namespace {

constexpr std::string_view group = "[Desktop Entry]";
constexpr std::string_view registeredKey = "X-Korvalin-Path";
constexpr std::string_view enabledKey = "X-GNOME-Autostart-enabled";

// Every value is a string with these escapes; a blank only needs one where it leads.
std::string EscapeValue(std::string_view text) {
    std::string value;
    for (const char c : text) {
        switch (c) {
        case '\\': value += "\\\\"; break;
        case '\n': value += "\\n"; break;
        case '\r': value += "\\r"; break;
        case '\t': value += "\\t"; break;
        case ' ': value += value.empty() ? "\\s" : " "; break;
        default: value += c;
        }
    }
    return value;
}

std::string UnescapeValue(std::string_view value) {
    std::string text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        switch (value[++i]) {
        case 'n': text += '\n'; break;
        case 'r': text += '\r'; break;
        case 't': text += '\t'; break;
        case 's': text += ' '; break;
        default: text += value[i];
        }
    }
    return text;
}

// One argument of an Exec line, quoted as a whole. '%' starts a field code, in quotes too.
std::string QuoteArgument(std::string_view argument) {
    std::string quoted = "\"";
    for (const char c : argument) {
        if (std::string_view("\"`$\\").find(c) != std::string_view::npos) quoted += '\\';
        if (c == '%') quoted += '%';
        quoted += c;
    }
    return quoted + '"';
}

// The program of an Exec line: its first argument.
std::string FirstArgument(std::string_view line) {
    std::string argument;
    const bool quoted = line.starts_with('"');
    for (std::size_t i = quoted ? 1 : 0; i < line.size() && line[i] != (quoted ? '"' : ' '); ++i) {
        const bool escape =
            (quoted && line[i] == '\\') || (line[i] == '%' && line.substr(i + 1).starts_with('%'));
        if (escape && i + 1 < line.size()) ++i;
        argument += line[i];
    }
    return argument;
}

std::string_view TrimBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// The keys of the group [Desktop Entry]; the first of two equal ones counts.
std::map<std::string, std::string, std::less<>> ReadKeys(std::string_view entry) {
    std::map<std::string, std::string, std::less<>> keys;
    bool inGroup = false;
    while (!entry.empty()) {
        const std::size_t end = std::min(entry.find('\n'), entry.size());
        const std::string_view line = TrimBlanks(entry.substr(0, end));
        entry.remove_prefix(std::min(end + 1, entry.size()));
        const auto equals = line.find('=');
        if (line.starts_with('[')) {
            inGroup = line == group;
        } else if (inGroup && !line.starts_with('#') && equals != std::string_view::npos) {
            keys.emplace(TrimBlanks(line.substr(0, equals)),
                         UnescapeValue(TrimBlanks(line.substr(equals + 1))));
        }
    }
    return keys;
}

} // namespace

std::string WriteAutostartEntry(std::string_view name, std::string_view executable,
                                std::string_view registeredPath) {
    std::string entry(group);
    const auto add = [&entry](std::string_view key, std::string_view value) {
        entry.append("\n").append(key).append("=").append(EscapeValue(value));
    };
    add("Type", "Application");
    add("Name", name);
    add("Exec", QuoteArgument(executable));
    add("TryExec", executable); // a program that was removed is not missed at every log-in
    add(enabledKey, "true");
    add(registeredKey, registeredPath);
    return entry + "\n";
}

bool IsSwitchedOff(std::string_view entry) {
    const auto keys = ReadKeys(entry);
    const auto is = [&keys](std::string_view key, std::string_view value) {
        const auto found = keys.find(key);
        return found != keys.end() && found->second == value;
    };
    return is("Hidden", "true") || is(enabledKey, "false");
}

std::optional<std::string> ReadAutostartEntry(std::string_view entry) {
    const auto keys = ReadKeys(entry);
    const auto value = [&keys](std::string_view key) {
        const auto found = keys.find(key);
        return found == keys.end() ? std::string() : found->second;
    };
    if (IsSwitchedOff(entry) || value("Exec").empty()) return std::nullopt;
    const std::string registered = value(registeredKey);
    return registered.empty() ? FirstArgument(value("Exec")) : registered;
}

} // namespace korvalin
