// Lines of the statistics file, of today's form and of the older one, however they are cut into blocks.
#include "Require.h"
#include "base/Locale.h"
#include "base/Text.h"
#include "stats/LineReader.h"
#include "stats/StatLine.h"

#include <vector>

using namespace korvalin;

namespace {

std::vector<std::string> LinesOf(std::string_view text, std::size_t blockBytes) {
    std::vector<std::string> lines;
    LineSplitter splitter([&](std::string_view line) { lines.emplace_back(line); });
    for (std::size_t at = 0; at < text.size(); at += blockBytes)
        splitter.Feed(text.substr(at, blockBytes));
    splitter.Finish();
    return lines;
}

std::string Written(const StatFields& fields) {
    std::string line;
    WriteStatRecord(line, fields);
    Require(line.ends_with(StatLineEnd) && line.find_first_of("\r\n") == line.size() - StatLineEnd.size());
    line.resize(line.size() - StatLineEnd.size());
    return line;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Locale locale;
    const std::vector<std::string> lines = LinesOf(text, 3);
    Require(lines == LinesOf(text, text.size() + 1));
    for (const std::string& raw : lines) {
        const std::string line = DecodeLine(raw);
        for (const auto& fields : {ParseStatLine(line, locale), ParseOldStatLine(line, locale)}) {
            if (!fields) continue;
            // What was written is read as it stands but for blanks around the name, and then written the same.
            const std::string written = Written(*fields);
            const auto again = ParseStatLine(written, locale);
            Require(again.has_value() && IsValidUtf8(written));
            const std::string trimmed = Written(*again);
            Require(Written(ParseStatLine(trimmed, locale).value()) == trimmed);
        }
    }
    return 0;
}
