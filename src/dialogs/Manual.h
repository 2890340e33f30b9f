#pragma once

#include <QObject>

#include <filesystem>

class QWidget;

namespace korvalin {

class Language;
class MessageBoxes;
class Shell;

/// The manual: a folder of pages in each language. While it exists F1 opens it, at the place that the window
/// in front names by its dynamic property "Manual": a page and an anchor, "settings#tvTray". Where a window
/// has pages the one in front may name it.
class Manual : public QObject {
    Q_OBJECT

  public:
    struct Parts {
        korvalin::Language& Language;
        korvalin::Shell& Shell;
        korvalin::MessageBoxes& MessageBoxes;
    };

    explicit Manual(const Parts& parts);

    /// Opens a place in the user's browser; the user is told when that cannot be done.
    void Open(const QString& place);

    /// The folder beside the program; where there is none but the program is installed on a system, that of
    /// its documents, ../share/doc/korvalin.
    std::filesystem::path Folder() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Tell(const std::string& text);

    Parts parts_;
};

} // namespace korvalin
