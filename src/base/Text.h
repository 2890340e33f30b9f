// Text is UTF-8 in memory; these helpers treat it as such where characters, not bytes, count.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// True when the bytes are well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates, at most U+10FFFF).
bool IsValidUtf8(std::string_view bytes);

/// Converts Windows-1252 to UTF-8. The five codes that 1252 leaves undefined become the C1 control of the
/// same number.
std::string FromWindows1252(std::string_view bytes);

/// A line read from a file as UTF-8: valid UTF-8 is taken as it is, anything else as Windows-1252.
std::string DecodeLine(std::string_view bytes);

/// The text without leading and trailing blanks (space only; tabs are field separators here).
std::string_view Trim(std::string_view text);

/// The form in which texts that differ in letter case only are equal, in every alphabet: lower case, nearly.
std::string ToLower(std::string_view text);

/// Equality without regard to letter case, by the folding of ToLower.
bool EqualsNoCase(std::string_view left, std::string_view right);

/// Whether `part` occurs in `text`, without regard to letter case.
bool ContainsNoCase(std::string_view text, std::string_view part);

/// Whether `text` starts with `prefix`, without regard to letter case.
bool StartsWithNoCase(std::string_view text, std::string_view prefix);

/// Whether `text` ends with `suffix`, without regard to letter case.
bool EndsWithNoCase(std::string_view text, std::string_view suffix);

/// Number of characters (code points).
std::size_t CharacterCount(std::string_view text);

/// The first `count` characters; never cuts inside one.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

/// Splits at `separator` into at most `limit` fields; the last one keeps any further separators. limit >= 1.
std::vector<std::string_view> Split(std::string_view text, char separator, std::size_t limit);

/// Replaces every occurrence of `from` (not empty) by `to`.
std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

/// The text on one line: each line break becomes a blank.
std::string OneLine(std::string_view text);

/// The text as a terminal may show it: control characters (C0 but for line feeds, DEL, C1) and bytes that are
/// no UTF-8 as "\\x1b", so that a name cannot move the cursor or set a title.
std::string EscapeControls(std::string_view text);

/// The text as a cell of a CSV file: one that a spreadsheet would take for a formula gets an apostrophe
/// before it.
std::string WithoutFormula(std::string_view text);

/// The text as it stands in a page or a picture (HTML, SVG): markup escaped, without the control characters
/// that a document must not hold.
std::string EscapeMarkup(std::string_view text);

/// The text up to its first zero byte.
std::string_view TrimAtNul(std::string_view text);

/// The characters of a fixed byte buffer up to the first zero byte. The last byte counts as the terminator
/// and is never copied, so a full buffer without a zero yields all but its last byte.
std::string AnsiBytesToString(std::string_view bytes);

} // namespace korvalin
