// Messages that are made of numbered texts and names.
#pragma once

#include "platform/MessageBoxes.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace korvalin {

class Language;

/// One piece of a message: a numbered text, or a name as it is.
struct MessagePiece {
    int Number = 0;
    std::string Name;

    MessagePiece(int number) : Number(number) {}
    MessagePiece(std::string name) : Name(std::move(name)) {}
};

/// The pieces in their order, with a blank between two where the wording brings none and no punctuation
/// follows.
std::string JoinPieces(Language& language, std::initializer_list<MessagePiece> pieces);

/// Shows a message of the program's start and returns the answer.
MessageAnswer ShowPieces(MessageBoxes& messageBoxes, Language& language,
                         std::initializer_list<MessagePiece> pieces, MessageIcon icon,
                         MessageButtons buttons = MessageButtons::Ok);

} // namespace korvalin
