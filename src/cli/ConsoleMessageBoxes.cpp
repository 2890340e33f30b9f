#include "cli/ConsoleMessageBoxes.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <cstdio>

namespace korvalin {

MessageAnswer ConsoleMessageBoxes::Show(const std::string& text, const std::string& title, MessageIcon icon,
                                        MessageButtons buttons) {
    showedError_ = showedError_ || icon == MessageIcon::Critical;
    fmt::print(stderr, "{}: {}\n", title, EscapeControls(text));
    return buttons == MessageButtons::Ok ? MessageAnswer::Ok : MessageAnswer::No;
}

void ConsoleMessageBoxes::ShowWaiting(const std::string& text, const std::string& title) {
    fmt::print(stderr, "{}: {}\n", title, EscapeControls(text));
}

} // namespace korvalin
