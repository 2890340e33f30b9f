#include "dialogs/frmMessage.h"

#include "dialogs/MessageTexts.h"
#include "forms/ProgramIcon.h"
#include "forms/Twips.h"
#include "ui_frmMessage.h"

#include <QMouseEvent>
#include <QScreen>

#include <algorithm>

namespace korvalin {
namespace {

constexpr int innerWidthTwips = 6000;
constexpr int marginTwips = 200;
constexpr double highestOnScreen = 0.6; // what is higher scrolls

} // namespace

frmMessage::frmMessage(const MessageTexts& texts)
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowStaysOnTopHint),
      texts_(texts),
      ui_(std::make_unique<Ui::frmMessage>()) {
    ui_->setupUi(this);
    setWindowIcon(ProgramIcon());
    texts_.ApplyTo(*this);
    connect(ui_->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->cmdAction, &QPushButton::clicked, this, &frmMessage::ChooseAction);
    ui_->lblMessage->viewport()->installEventFilter(this);
}

frmMessage::~frmMessage() = default;

void frmMessage::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) Form_Load();
    QDialog::showEvent(event); // places the window by its size
}

void frmMessage::Form_Load() {
    if (Msg_Text.isEmpty()) Msg_Text = texts_.Lng("frmMessage", 1, "no text");
    ui_->cmdOK->setVisible((Msg_Options & MessageWaits) == 0);
    ui_->cmdOK->setFocus();
    ui_->cmdAction->setText(Msg_Action);
    ui_->cmdAction->setVisible(!Msg_Action.isEmpty());
    if (!Msg_Action.isEmpty()) ui_->lblMessage->viewport()->setCursor(Qt::PointingHandCursor);
    PlaceMessage();
    setAccessibleDescription(Msg_Text);
    setFixedSize(TwipsToPixels(innerWidthTwips), layout()->totalSizeHint().height());
    layout()->activate(); // shown once more, the window may have its size already
}

// A click, but not the end of a selection.
bool frmMessage::eventFilter(QObject* watched, QEvent* event) {
    const bool released = event->type() == QEvent::MouseButtonRelease &&
                          static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton;
    if (released && !Msg_Action.isEmpty() && !ui_->lblMessage->textCursor().hasSelection()) ChooseAction();
    return QDialog::eventFilter(watched, event);
}

void frmMessage::ChooseAction() {
    accept();
    emit ActionChosen();
}

// A short text stands in the middle, a longer one is as wide as the window and wraps.
void frmMessage::PlaceMessage() {
    const int margin = TwipsToPixels(marginTwips);
    const int widest = TwipsToPixels(innerWidthTwips) - 2 * margin;
    MessageText& text = *ui_->lblMessage;
    layout()->setContentsMargins(margin, margin, margin, margin);
    text.ShowText(Msg_Text);
    const int width = std::min(text.WidestLine(), widest);
    const int highest = static_cast<int>(
        (screen() != nullptr ? screen()->availableSize().height() : QWIDGETSIZE_MAX) * highestOnScreen);
    text.SetRoom(width, std::min(text.HeightFor(width), highest));
}

} // namespace korvalin
