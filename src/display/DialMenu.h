#pragma once

#include "traffic/Dialing.h"

#include <QObject>

#include <string>
#include <vector>

class QAction;
class QMenu;

namespace korvalin {

/// The menu entries for dialing: the submenu mnuLogIn with the array mnuLogInLine, an entry for what was
/// dialed last, and one to hang up.
class DialMenu : public QObject {
    Q_OBJECT

  public:
    struct Items {
        QMenu& LogIn;
        QAction& Quick;
        QAction& LogOut;
        QAction& Separator; // behind the three
    };
    explicit DialMenu(const Items& items);

    /// Fits the entries to what can be done.
    void Show(const DialChoices& choices);

    /// Whether anything can be chosen.
    void SetEnabled(bool enabled);

  signals:
    void Chosen(const std::string& entryName);

  private:
    void ShowEntries(const std::vector<std::string>& names);
    QAction* NewItem(std::size_t number, const std::string& name);

    Items items_;
    std::vector<std::string> names_;
    std::string quick_;
};

} // namespace korvalin
