#include "forms/NameText.h"

#include <QFontMetrics>

#include <algorithm>

namespace korvalin {
namespace {

constexpr int widestMenuName = 360; // logical pixels

// Joiners belong to words of some scripts.
bool IsShown(QChar c) {
    constexpr char16_t zeroWidthNonJoiner = 0x200C;
    constexpr char16_t zeroWidthJoiner = 0x200D;
    switch (c.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph: return false;
    case QChar::Other_Format: return c == zeroWidthNonJoiner || c == zeroWidthJoiner;
    default: return true;
    }
}

} // namespace

QString OneLineName(const std::string& name) {
    QString text = QString::fromStdString(name);
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return !IsShown(c); }, QChar(QChar::ReplacementCharacter));
    return text;
}

QString ShortName(const std::string& name, const QFontMetrics& metrics, int widest) {
    return metrics.elidedText(OneLineName(name), Qt::ElideMiddle, widest);
}

QString MenuName(const std::string& name, const QFontMetrics& metrics) {
    return ShortName(name, metrics, widestMenuName).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString ToolTipName(const std::string& name) {
    return QLatin1String("<span>") + OneLineName(name).toHtmlEscaped() + QLatin1String("</span>");
}

} // namespace korvalin
