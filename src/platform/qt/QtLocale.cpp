#include "platform/qt/QtLocale.h"

#include <QLocale>
#include <QString>

namespace korvalin {
namespace {

// Qt writes months M and minutes m, hours h or H, and marks AM/PM as AP or A; quoted parts are literal.
std::string TranslatePattern(const QString& pattern) {
    QString result;
    bool quoted = false;
    for (qsizetype i = 0; i < pattern.size();) {
        const QChar letter = pattern[i];
        if (letter == u'\'') {
            quoted = !quoted;
            ++i;
            continue;
        }
        if (quoted) {
            result += letter;
            ++i;
            continue;
        }
        qsizetype run = 1;
        while (i + run < pattern.size() && pattern[i + run] == letter) ++run;
        switch (letter.unicode()) {
        case 'M': result += QString(std::min<qsizetype>(run, 2), u'm'); break;
        case 'm': result += QString(std::min<qsizetype>(run, 2), u'n'); break;
        case 'H':
        case 'h': result += QString(std::min<qsizetype>(run, 2), u'h'); break;
        case 'y': result += QStringLiteral("yyyy"); break;
        case 'A':
        case 'a':
            result += QStringLiteral("AMPM");
            if (i + run < pattern.size() && pattern[i + run].toLower() == u'p') ++run;
            break;
        case 't':
        case 'z': break; // time zone and milliseconds
        default: result += QString(run, letter);
        }
        i += run;
    }
    return result.trimmed().toStdString();
}

std::string TimePattern(const QLocale& locale) {
    std::string pattern = TranslatePattern(locale.timeFormat(QLocale::ShortFormat));
    // The short form leaves out the seconds, which every time here has.
    if (pattern.find('s') == std::string::npos) {
        const auto minutes = pattern.find("nn");
        if (minutes == std::string::npos) return "hh:nn:ss";
        pattern.insert(minutes + 2, ":ss");
    }
    return pattern;
}

} // namespace

Locale ReadQtLocale(const QLocale& locale) {
    Locale result;
    result.DecimalMark = locale.decimalPoint().toStdString();
    result.GroupingMark = locale.groupSeparator().toStdString();
    result.ShortDate = TranslatePattern(locale.dateFormat(QLocale::ShortFormat));
    result.Time = TimePattern(locale);
    for (int i = 0; i < 12; ++i) {
        result.MonthNames.at(static_cast<std::size_t>(i)) = locale.standaloneMonthName(i + 1).toStdString();
    }
    for (int i = 0; i < 7; ++i) {
        // Qt counts from Monday 1 to Sunday 7
        result.DayNames.at(static_cast<std::size_t>(i)) = locale.standaloneDayName(i == 0 ? 7 : i).toStdString();
    }
    return result;
}

} // namespace korvalin
