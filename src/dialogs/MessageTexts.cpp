#include "dialogs/MessageTexts.h"

#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"

namespace korvalin {

QString MessageTexts::Lng(const char* section, int number, const char* english) const {
    const std::string text = language_ != nullptr ? language_->Lng(section, number) : std::string();
    return text.empty() ? QString::fromUtf8(english) : QString::fromStdString(text);
}

void MessageTexts::ApplyTo(QWidget& form) const {
    if (language_ != nullptr) ApplyFormTexts(form, *language_);
}

} // namespace korvalin
