#pragma once

#include <QWidget>

namespace korvalin {

/// Keeps a window that deletes itself when it is closed: the program may end, and close it, while the user is
/// asked something, and who asked goes on with the answer. The window is deleted afterwards then.
class KeptWhileAsking {
  public:
    explicit KeptWhileAsking(QWidget& window)
        : window_(window), deletesItself_(window.testAttribute(Qt::WA_DeleteOnClose)) {
        window_.setAttribute(Qt::WA_DeleteOnClose, false);
    }
    ~KeptWhileAsking() {
        if (!deletesItself_) return;
        window_.isVisible() ? window_.setAttribute(Qt::WA_DeleteOnClose) : window_.deleteLater();
    }
    KeptWhileAsking(const KeptWhileAsking&) = delete;
    KeptWhileAsking& operator=(const KeptWhileAsking&) = delete;

  private:
    QWidget& window_;
    bool deletesItself_;
};

} // namespace korvalin
