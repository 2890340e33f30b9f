#pragma once

#include <QWidget>

namespace korvalin {

/// A message without buttons that stays until it is deleted.
class WaitingMessage : public QWidget {
    Q_OBJECT

  public:
    WaitingMessage(const QString& text, const QString& title);

  protected:
    void closeEvent(QCloseEvent* event) override;
};

} // namespace korvalin
