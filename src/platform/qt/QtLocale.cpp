#include "platform/qt/QtLocale.h"

#include <QLocale>
#include <QString>

#include <algorithm>
#include <vector>

namespace korvalin {
namespace {

// A run of one pattern letter, or what stands between two of them.
struct Token {
    QChar Letter; // null for literal text
    QString Text;
};

// Our patterns know no quotes: a literal's letters would be taken for fields, so they are dropped, and with
// them the marks that only turn the writing direction.
QString PlainLiteral(QString literal) {
    literal.removeIf(
        [](QChar c) { return (c.unicode() < 128 && c.isLetter()) || c.category() == QChar::Other_Format; });
    // No-break spaces, narrow or not: users type plain ones.
    std::replace_if(
        literal.begin(), literal.end(), [](QChar c) { return c.isSpace(); }, QLatin1Char(' '));
    return literal;
}

std::vector<Token> SplitPattern(const QString& pattern) {
    std::vector<Token> tokens;
    const auto literal = [&](const QString& text) {
        if (tokens.empty() || !tokens.back().Letter.isNull()) tokens.push_back({});
        tokens.back().Text += text;
    };
    bool quoted = false;
    for (const QChar c : pattern) {
        if (c == QLatin1Char('\'')) {
            quoted = !quoted;
        } else if (quoted || c.unicode() >= 128 || !c.isLetter()) {
            literal(c);
        } else if (!tokens.empty() && tokens.back().Letter == c) {
            tokens.back().Text += c;
        } else {
            tokens.push_back({c, c});
        }
    }
    return tokens;
}

QString TranslateDate(const QString& pattern) {
    QString result;
    for (const Token& token : SplitPattern(pattern)) {
        switch (token.Letter.unicode()) {
        case 0: result += PlainLiteral(token.Text); break;
        case 'd': result += token.Text.left(2); break;
        case 'M': result += token.Text.left(2).toLower(); break;
        case 'y': result += QLatin1String("yyyy"); break;
        default: break;
        }
    }
    return result.trimmed();
}

// The short pattern with seconds put behind the minutes: the long one drags the time zone along.
QString TranslateTime(const QString& pattern) {
    QString result;
    QString separator = QStringLiteral(":");
    bool afterHour = false;
    for (const Token& token : SplitPattern(pattern)) {
        switch (token.Letter.unicode()) {
        case 0: {
            const QString literal = PlainLiteral(token.Text);
            if (afterHour && !literal.trimmed().isEmpty()) separator = literal;
            result += afterHour ? separator : literal;
            break;
        }
        case 'H':
        case 'h': result += token.Text.left(2).toLower(); break;
        case 'm':
            result +=
                QString(token.Text.size() < 2 ? 1 : 2, QLatin1Char('n')) + separator + QLatin1String("ss");
            break;
        // "AP", "ap", and "A", "a" alone.
        case 'A':
        case 'a': result += QLatin1String("AMPM"); break;
        default: break;
        }
        afterHour = token.Letter == QLatin1Char('H') || token.Letter == QLatin1Char('h');
    }
    return result.trimmed();
}

template <std::size_t Count, typename Name>
void FillNames(std::array<std::string, Count>& names, const Name& nameOf) {
    for (std::size_t i = 0; i < Count; ++i)
        names.at(i) = nameOf(static_cast<int>(i)).toStdString();
}

} // namespace

Locale ReadQtLocale(const QLocale& locale) {
    Locale result;
    if (locale.language() == QLocale::C) return result; // nobody's habits
    result.DecimalMark = locale.decimalPoint().toStdString();
    result.GroupingMark = locale.groupSeparator().toStdString();
    result.ShortDate = TranslateDate(locale.dateFormat(QLocale::ShortFormat)).toStdString();
    result.Time = TranslateTime(locale.timeFormat(QLocale::ShortFormat)).toStdString();
    const auto monthName = [&](QLocale::FormatType format) {
        return [&locale, format](int month) { return locale.standaloneMonthName(month + 1, format); };
    };
    FillNames(result.MonthNames, monthName(QLocale::LongFormat));
    FillNames(result.ShortMonthNames, monthName(QLocale::ShortFormat));
    // The toolkit's week starts on Monday (1) and ends on Sunday (7).
    const auto dayName = [&](QLocale::FormatType format) {
        return [&locale, format](int day) { return locale.standaloneDayName(day == 0 ? 7 : day, format); };
    };
    FillNames(result.DayNames, dayName(QLocale::LongFormat));
    FillNames(result.ShortDayNames, dayName(QLocale::ShortFormat));
    return result;
}

} // namespace korvalin
