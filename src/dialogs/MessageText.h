#pragma once

#include <QTextEdit>

namespace korvalin {

/// The text of a message, plain and to be selected with the mouse. A word that is wider than its line, as
/// folders and phone numbers can be, breaks anywhere; what is higher than the text's room scrolls.
class MessageText : public QTextEdit {
    Q_OBJECT

  public:
    explicit MessageText(QWidget* parent = nullptr);

    /// Shows a text whose every line is as long as it is, until SetRoom gives it another width.
    void ShowText(const QString& text);

    /// The width of its longest line.
    int WidestLine() const;

    /// How high the text is when it is that wide.
    int HeightFor(int width) const;

    /// Gives it this size. It scrolls, by the keyboard too, when that is not high enough.
    void SetRoom(int width, int height);
};

} // namespace korvalin
