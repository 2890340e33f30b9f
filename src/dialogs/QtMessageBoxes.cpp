#include "dialogs/QtMessageBoxes.h"

#include "dialogs/frmMessage.h"
#include "dialogs/frmPopupMsg.h"

#include <QApplication>

#include <vector>

namespace korvalin {
namespace {

int StyleOf(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::Information: return IconStyleInformation;
    case MessageIcon::Warning: return IconStyleExclamation;
    case MessageIcon::Critical: return IconStyleCritical;
    case MessageIcon::Question: return IconStyleQuestion;
    }
    return IconStyleInformation;
}

// In the order of the buttons. The last one is the answer of a box that is closed without any.
std::vector<MessageAnswer> AnswersOf(MessageButtons buttons) {
    switch (buttons) {
    case MessageButtons::Ok: break;
    case MessageButtons::YesNo:
    case MessageButtons::YesNoDefaultNo: return {MessageAnswer::Yes, MessageAnswer::No};
    case MessageButtons::YesNoCancel: return {MessageAnswer::Yes, MessageAnswer::No, MessageAnswer::Cancel};
    }
    return {MessageAnswer::Ok};
}

QString ToText(const std::string& text) {
    return QString::fromStdString(text).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

} // namespace

QtMessageBoxes::QtMessageBoxes() = default;

QtMessageBoxes::~QtMessageBoxes() = default;

QString QtMessageBoxes::Caption(MessageAnswer answer) const {
    switch (answer) {
    case MessageAnswer::Ok: break;
    case MessageAnswer::Yes: return texts_.Lng("frmPopupMsg", 3, "&Yes");
    case MessageAnswer::No: return texts_.Lng("frmPopupMsg", 2, "&No");
    case MessageAnswer::Cancel: return texts_.Lng("frmPopupMsg", 1, "&Cancel");
    }
    return {};
}

MessageAnswer QtMessageBoxes::Show(const std::string& text, const std::string& title, MessageIcon icon,
                                   MessageButtons buttons) {
    if (keep_) {
        if (buttons != MessageButtons::Ok) return MessageAnswer::No;
        keep_(text);
        return MessageAnswer::Ok;
    }
    const std::vector<MessageAnswer> answers = AnswersOf(buttons);
    PopupMessage message{ToText(text), StyleOf(icon), static_cast<int>(answers.size()) - 1, ToText(title)};
    for (std::size_t i = 0; i < answers.size(); ++i)
        message.Captions[i] = Caption(answers[i]);
    const bool mayDoHarm =
        buttons == MessageButtons::YesNoCancel || buttons == MessageButtons::YesNoDefaultNo;
    if (mayDoHarm) message.Default = 1;
    const int pressed = frmPopupMsg::ShowMsg(texts_, message, QApplication::activeWindow());
    return answers[static_cast<std::size_t>(pressed)];
}

void QtMessageBoxes::ShowNotice(const std::string& text, const std::string& title, const QString& caption,
                                const std::function<void()>& chosen) {
    if (keep_) return keep_(text);
    auto* notice = new frmMessage(texts_);
    notice->setAttribute(Qt::WA_DeleteOnClose);
    notice->setAttribute(Qt::WA_ShowWithoutActivating);
    notice->setWindowTitle(ToText(title));
    notice->Msg_Text = ToText(text);
    notice->Msg_Action = caption;
    QObject::connect(notice, &frmMessage::ActionChosen, notice, chosen);
    notice->show();
}

void QtMessageBoxes::ShowWaiting(const std::string& text, const std::string& title) {
    if (keep_) return;
    waiting_ = std::make_unique<frmMessage>(texts_);
    waiting_->setWindowTitle(ToText(title));
    waiting_->Msg_Text = ToText(text);
    waiting_->Msg_Options = MessageWaits;
    waiting_->show();
}

void QtMessageBoxes::CloseWaiting() {
    waiting_.reset();
}

} // namespace korvalin
