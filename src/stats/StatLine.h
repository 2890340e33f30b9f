// One record as a line of the statistics file:
//   "Line1",#2004-12-31 22:22:22#,#01:23:45#,1843212,20571190,"","user1"
// name, log-in, duration, bytes transmitted, bytes received, note, user.
#pragma once

#include "base/Date.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

struct Locale;
struct StatRecord;

/// What ends each line of the statistics file and its export, on every system.
inline constexpr std::string_view StatLineEnd = "\r\n";

/// The stored fields of a record; the texts belong to the line that was read, or to the caller who writes.
struct StatFields {
    std::string_view LineName;
    Date LogIn = 0;
    Date Duration = 0;
    double BytesTransmitted = 0;
    double BytesReceived = 0;
    std::string_view Info;
    std::string_view User;
};

/// Reads a line (without its end, UTF-8). Dates may also stand in the locale's own form. nullopt for a line
/// that is no record.
std::optional<StatFields> ParseStatLine(std::string_view line, const Locale& locale);

/// Reads a line of the older format: fields separated by tabs, the third unused, no user.
std::optional<StatFields> ParseOldStatLine(std::string_view line, const Locale& locale);

/// Appends the record's line with its end. There is no escaping: characters that the line could not be read
/// back with (line breaks, a quote in the name, a comma in note or user) are replaced by similar ones, an
/// empty name by a blank.
void WriteStatRecord(std::string& text, const StatFields& fields);

/// The fields that a record is stored with.
StatFields FieldsOf(const StatRecord& record);

} // namespace korvalin
