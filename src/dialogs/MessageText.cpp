#include "dialogs/MessageText.h"

#include <QScrollBar>
#include <QTextDocument>

#include <cmath>
#include <memory>

namespace korvalin {

MessageText::MessageText(QWidget* parent) : QTextEdit(parent) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setFrameShape(QFrame::NoFrame);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setBackgroundRole(QPalette::Window);
    document()->setDocumentMargin(0);
}

void MessageText::ShowText(const QString& text) {
    setPlainText(text);
}

// A copy of the document: the widget's own follows the widget's size.
int MessageText::WidestLine() const {
    const std::unique_ptr<QTextDocument> copy(document()->clone());
    copy->setTextWidth(-1);
    return static_cast<int>(std::ceil(copy->idealWidth()));
}

int MessageText::HeightFor(int width) const {
    const std::unique_ptr<QTextDocument> copy(document()->clone());
    copy->setTextWidth(width);
    return static_cast<int>(std::ceil(copy->size().height()));
}

void MessageText::SetRoom(int width, int height) {
    const bool scrolls = HeightFor(width) > height;
    setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    setFocusPolicy(scrolls ? Qt::TabFocus : Qt::NoFocus);
    setFixedSize(width + (scrolls ? verticalScrollBar()->sizeHint().width() : 0), height);
}

} // namespace korvalin
