#include "platform/qt/QtMessageBoxes.h"

#include <QMessageBox>
#include <QPushButton>

namespace korvalin {
namespace {

QMessageBox::Icon IconOf(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::Warning: return QMessageBox::Warning;
    case MessageIcon::Critical: return QMessageBox::Critical;
    case MessageIcon::Question: return QMessageBox::Question;
    default: return QMessageBox::Information;
    }
}

void Fill(QMessageBox& box, const std::string& text, const std::string& title) {
    box.setObjectName(QStringLiteral("frmMessage"));
    box.setTextFormat(Qt::PlainText); // file names and server texts are no markup
    box.setText(QString::fromStdString(text));
    box.setWindowTitle(QString::fromStdString(title));
    box.setWindowFlag(Qt::WindowStaysOnTopHint); // the main window may be on top of everything itself
}

} // namespace

QtMessageBoxes::QtMessageBoxes() : captionOf_([](MessageAnswer) { return QString(); }) {}
QtMessageBoxes::~QtMessageBoxes() = default;

MessageAnswer QtMessageBoxes::Show(const std::string& text, const std::string& title, MessageIcon icon,
                                   MessageButtons buttons) {
    QMessageBox box;
    Fill(box, text, title);
    box.setIcon(IconOf(icon));
    const auto add = [&](QMessageBox::StandardButton button, MessageAnswer answer) {
        QPushButton* added = box.addButton(button);
        const QString caption = captionOf_(answer);
        if (!caption.isEmpty()) added->setText(caption);
    };
    if (buttons == MessageButtons::YesNo) {
        add(QMessageBox::Yes, MessageAnswer::Yes);
        add(QMessageBox::No, MessageAnswer::No);
        box.setEscapeButton(QMessageBox::No);
        return box.exec() == QMessageBox::Yes ? MessageAnswer::Yes : MessageAnswer::No;
    }
    add(QMessageBox::Ok, MessageAnswer::Ok);
    box.exec();
    return MessageAnswer::Ok;
}

void QtMessageBoxes::ShowWaiting(const std::string& text, const std::string& title) {
    waiting_ = std::make_unique<QMessageBox>();
    Fill(*waiting_, text, title);
    waiting_->setIcon(QMessageBox::Information);
    waiting_->setStandardButtons(QMessageBox::NoButton);
    waiting_->setModal(false);
    waiting_->show();
}

void QtMessageBoxes::CloseWaiting() { waiting_.reset(); }

} // namespace korvalin
