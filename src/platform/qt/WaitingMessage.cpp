#include "platform/qt/WaitingMessage.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

namespace korvalin {
namespace {

constexpr int marginPixels = 18;
constexpr int gapPixels = 14;
constexpr int widestText = 480;

} // namespace

WaitingMessage::WaitingMessage(const QString& text, const QString& title)
    : QWidget(nullptr,
              Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowStaysOnTopHint) {
    setWindowTitle(title);
    auto* icon = new QLabel(this);
    const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(iconSize));
    auto* message = new QLabel(this);
    message->setTextFormat(Qt::PlainText);
    message->setText(text);
    message->setWordWrap(message->sizeHint().width() > widestText);
    if (message->wordWrap()) message->setMinimumWidth(widestText);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(marginPixels, marginPixels, marginPixels, marginPixels);
    layout->setSpacing(gapPixels);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addWidget(message, 1);
}

void WaitingMessage::closeEvent(QCloseEvent* event) {
    event->ignore(); // what it waits for is not done yet
}

} // namespace korvalin
