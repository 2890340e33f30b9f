#include "platform/qt/QtMessageBoxes.h"

#include "forms/ProgramIcon.h"
#include "platform/qt/WaitingMessage.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <algorithm>

namespace korvalin {
namespace {

QMessageBox::Icon IconOf(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::Information: return QMessageBox::Information;
    case MessageIcon::Warning: return QMessageBox::Warning;
    case MessageIcon::Critical: return QMessageBox::Critical;
    case MessageIcon::Question: return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

QString ToText(const std::string& text) {
    return QString::fromStdString(text).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

// A box below a window that stays on top would block the program unseen.
bool SomethingStaysOnTop() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](const QWidget* window) {
        return window->isVisible() && window->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    });
}

void AddButtons(QMessageBox& box, MessageButtons buttons, const QtMessageBoxes::CaptionOf& captionOf) {
    const auto add = [&](QMessageBox::StandardButton button, MessageAnswer answer, const char* english) {
        const std::string caption = captionOf(answer);
        box.addButton(button)->setText(QString::fromStdString(caption.empty() ? english : caption));
    };
    if (buttons == MessageButtons::Ok) return add(QMessageBox::Ok, MessageAnswer::Ok, "OK");
    add(QMessageBox::Yes, MessageAnswer::Yes, "&Yes");
    add(QMessageBox::No, MessageAnswer::No, "&No");
    if (buttons == MessageButtons::YesNoCancel)
        add(QMessageBox::Cancel, MessageAnswer::Cancel, "&Cancel");
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(buttons == MessageButtons::YesNo ? QMessageBox::No : QMessageBox::Cancel);
}

} // namespace

QtMessageBoxes::QtMessageBoxes() : captionOf_([](MessageAnswer) { return std::string(); }) {}

QtMessageBoxes::~QtMessageBoxes() = default;

MessageAnswer QtMessageBoxes::Show(const std::string& text, const std::string& title, MessageIcon icon,
                                   MessageButtons buttons) {
    if (displayLost_) return buttons == MessageButtons::Ok ? MessageAnswer::Ok : MessageAnswer::No;
    // The window above which the box stands may be deleted, and the box with it, while the box waits.
    QPointer<QMessageBox> box = new QMessageBox(QApplication::activeWindow());
    box->setTextFormat(Qt::PlainText);
    box->setText(ToText(text));
    box->setWindowTitle(ToText(title));
    box->setWindowIcon(ProgramIcon());
    box->setIcon(IconOf(icon));
    box->setTextInteractionFlags(Qt::TextSelectableByMouse); // error texts want to be passed on
    if (SomethingStaysOnTop()) box->setWindowFlag(Qt::WindowStaysOnTopHint);
    AddButtons(*box, buttons, captionOf_);
    const int answer = box->exec();
    delete box;
    switch (buttons) {
    case MessageButtons::Ok: return MessageAnswer::Ok;
    case MessageButtons::YesNo: return answer == QMessageBox::Yes ? MessageAnswer::Yes : MessageAnswer::No;
    case MessageButtons::YesNoCancel: break;
    }
    return answer == QMessageBox::Yes  ? MessageAnswer::Yes
           : answer == QMessageBox::No ? MessageAnswer::No
                                       : MessageAnswer::Cancel;
}

void QtMessageBoxes::ShowWaiting(const std::string& text, const std::string& title) {
    if (displayLost_) return;
    waiting_ = std::make_unique<WaitingMessage>(ToText(text), ToText(title));
    waiting_->setWindowIcon(ProgramIcon());
    waiting_->show();
}

void QtMessageBoxes::CloseWaiting() {
    waiting_.reset();
}

} // namespace korvalin
