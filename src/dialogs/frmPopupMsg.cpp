#include "dialogs/frmPopupMsg.h"

#include "base/ProgramTitle.h"
#include "dialogs/MessageTexts.h"
#include "errors/Errors.h"
#include "forms/ProgramIcon.h"
#include "forms/Twips.h"
#include "ui_frmPopupMsg.h"

#include <QPointer>
#include <QScreen>
#include <QStyle>

#include <algorithm>

namespace korvalin {
namespace {

constexpr int aroundMessageTwips = 1300; // the window's height without its message
constexpr int buttonsAboveBottomTwips = 600;
constexpr int sideMargin = 20;
constexpr int smallestMargin = 10;
constexpr int widestMessage = 480;
// Parts of the screen; a larger message scrolls.
constexpr double widestOnScreen = 0.7;
constexpr double highestOnScreen = 0.6;
constexpr int firstResult = 1; // of the dialog: 0 is a box without an answer

struct Icon {
    QStyle::StandardPixmap Picture;
    QString Meaning;
};

Icon IconOf(int style, const MessageTexts& texts) {
    switch (style) {
    case IconStyleCritical: return {QStyle::SP_MessageBoxCritical, texts.Lng("frmPopupMsg", 7, "Error")};
    case IconStyleQuestion: return {QStyle::SP_MessageBoxQuestion, texts.Lng("frmPopupMsg", 5, "Question")};
    case IconStyleExclamation: return {QStyle::SP_MessageBoxWarning, texts.Lng("frmPopupMsg", 6, "Warning")};
    default: return {QStyle::SP_MessageBoxInformation, texts.Lng("frmPopupMsg", 4, "Note")};
    }
}

PopupMessage::ButtonCaptions SettleCaptions(PopupMessage::ButtonCaptions captions,
                                            const MessageTexts& texts) {
    if (captions[0].isEmpty()) captions[0] = texts.Lng("frmAboutObj", 4, "OK");
    if (captions[1].isEmpty()) std::swap(captions[1], captions[2]);
    return captions;
}

std::optional<int> FindCancelWord(const PopupMessage::ButtonCaptions& captions, const MessageTexts& texts) {
    const QString words[] = {texts.Lng("frmPopupMsg", 2, "&No"), texts.Lng("frmPopupMsg", 1, "&Cancel")};
    const auto found =
        std::find_first_of(captions.begin(), captions.end(), std::begin(words), std::end(words));
    if (found == captions.end()) return std::nullopt;
    return static_cast<int>(found - captions.begin());
}

QSize RoomForMessage(const QScreen* screen) {
    if (screen == nullptr) return {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    const QSize size = screen->availableSize();
    return {static_cast<int>(size.width() * widestOnScreen),
            static_cast<int>(size.height() * highestOnScreen)};
}

// Wraps a long message. Its width is the narrowest one that takes no more lines than the widest: no last line
// with a single word.
QSize MessageSize(const MessageText& text, const QSize& room) {
    const int widest = std::min(widestMessage, room.width());
    constexpr int step = 8;
    int width = std::min(text.WidestLine(), widest);
    const int height = text.HeightFor(width);
    if (height > room.height()) return {width, room.height()};
    const bool wraps = width < text.WidestLine();
    while (wraps && width - step > widest / 2 && text.HeightFor(width - step) <= height)
        width -= step;
    return {width, height};
}

} // namespace

int frmPopupMsg::ShowMsg(const MessageTexts& texts, const PopupMessage& message, QWidget* parent) {
    // The window above which the box stands may be deleted, and the box with it, while the box waits.
    const QPointer<frmPopupMsg> box = new frmPopupMsg(texts, message, parent);
    const int unanswered = box->Unanswered();
    const int pressed = box->exec() - firstResult;
    delete box;
    return pressed >= 0 ? pressed : unanswered;
}

frmPopupMsg::frmPopupMsg(const MessageTexts& texts, const PopupMessage& message, QWidget* parent)
    : QDialog(parent), texts_(texts), ui_(std::make_unique<Ui::frmPopupMsg>()) {
    ui_->setupUi(this);
    setWindowIcon(ProgramIcon());
    setWindowTitle(message.Title.isEmpty()
                       ? QString::fromUtf8(ProgramTitle.data(), static_cast<qsizetype>(ProgramTitle.size()))
                       : message.Title);
    const PopupMessage::ButtonCaptions captions = SettleCaptions(message.Captions, texts_);
    cancel_ = message.Cancel ? message.Cancel : FindCancelWord(captions, texts_);
    const auto closeBox = cancel_ ? Qt::WindowCloseButtonHint : Qt::CustomizeWindowHint;
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowStaysOnTopHint |
                   closeBox);
    ShowIcon(message.IconStyle);
    ShowMessage(message.Message);
    ShowButtons(captions, message.Default);
    Place();
}

frmPopupMsg::~frmPopupMsg() = default;

void frmPopupMsg::ShowIcon(int iconStyle) {
    const Icon icon = IconOf(iconStyle, texts_);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    ui_->picIcon->setPixmap(style()->standardIcon(icon.Picture, nullptr, this).pixmap(size));
    ui_->picIcon->setAccessibleName(icon.Meaning);
}

void frmPopupMsg::ShowMessage(const QString& message) {
    ui_->lblMessage->ShowText(message);
    ui_->lblMessage->setAccessibleName(windowTitle());
    setAccessibleDescription(message);
    const QSize size = MessageSize(*ui_->lblMessage, RoomForMessage(screen()));
    ui_->lblMessage->SetRoom(size.width(), size.height());
}

void frmPopupMsg::ShowButtons(const PopupMessage::ButtonCaptions& captions, int defaultButton) {
    QPushButton* const cmdMsg[] = {ui_->cmdMsg0, ui_->cmdMsg1, ui_->cmdMsg2};
    for (int i = 0; i < static_cast<int>(captions.size()); ++i) {
        const QString& caption = captions[static_cast<std::size_t>(i)];
        cmdMsg[i]->setText(caption);
        cmdMsg[i]->setVisible(!caption.isEmpty());
        if (!caption.isEmpty()) lastButton_ = i;
        connect(cmdMsg[i], &QPushButton::clicked, this, [this, i] { done(firstResult + i); });
    }
    cmdMsg[defaultButton]->setDefault(true);
    cmdMsg[defaultButton]->setFocus();
    ui_->picIcon->setFocusProxy(cmdMsg[defaultButton]);
}

void frmPopupMsg::Place() {
    const int buttons = TwipsToPixels(buttonsAboveBottomTwips);
    const int above = TwipsToPixels(aroundMessageTwips) - buttons;
    const int below = std::max(buttons - ui_->cmdMsg0->sizeHint().height(), smallestMargin);
    ui_->layout->setContentsMargins(sideMargin, above / 2, sideMargin, below);
    ui_->layout->setSpacing(above - above / 2);
    ui_->layout->activate();
    if (screen() != nullptr) move(screen()->availableGeometry().center() - rect().center());
}

void frmPopupMsg::reject() {
    if (cancel_) done(firstResult + *cancel_);
}

} // namespace korvalin
