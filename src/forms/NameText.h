// Names that the system or the user chose, shown as they are: they may hold any character and be of any
// length.
#pragma once

#include <QString>

#include <string>

class QFontMetrics;

namespace korvalin {

/// The name on one line: a replacement character stands for each that would break the line or turn the
/// reading direction.
QString OneLineName(const std::string& name);

/// The name as a menu's or a label's caption of at most `widest` logical pixels: its middle is left out when
/// it is longer.
QString ShortName(const std::string& name, const QFontMetrics& metrics, int widest);

/// The caption of a menu entry: ShortName, its ampersands no access keys.
QString MenuName(const std::string& name, const QFontMetrics& metrics);

/// The whole name for a tooltip, which is else taken for rich text when it looks like it.
QString ToolTipName(const std::string& name);

} // namespace korvalin
