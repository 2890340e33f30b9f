#include "lang/MessagePieces.h"

#include "base/ProgramTitle.h"
#include "errors/Errors.h"
#include "lang/Language.h"

namespace korvalin {
namespace {

bool NeedsBlank(std::string_view before, std::string_view after) {
    if (before.empty() || after.empty()) return false;
    constexpr std::string_view opening = " \n\t(\"'";
    constexpr std::string_view closing = " \n\t).,;:!?\"'";
    return opening.find(before.back()) == std::string_view::npos &&
           closing.find(after.front()) == std::string_view::npos;
}

} // namespace

std::string JoinPieces(Language& language, std::initializer_list<MessagePiece> pieces) {
    std::string text;
    for (const MessagePiece& piece : pieces) {
        const std::string part = piece.Number == 0 ? piece.Name : language.Lng("modAllgemein", piece.Number);
        if (NeedsBlank(text, part)) text += ' ';
        text += part;
    }
    return text;
}

MessageAnswer ShowPieces(MessageBoxes& messageBoxes, Language& language,
                         std::initializer_list<MessagePiece> pieces, MessageIcon icon,
                         MessageButtons buttons) {
    return messageBoxes.Show(JoinPieces(language, pieces), std::string(ProgramTitle), icon, buttons);
}

} // namespace korvalin
