#pragma once

#include "traffic/Dialing.h"

#include <functional>
#include <string>
#include <vector>

class QAction;
class QMenu;

namespace korvalin {

/// The menu entries for dialing: the submenu mnuLogIn with the array mnuLogInLine, an entry for what was
/// dialed last, and one to hang up.
class DialMenu {
  public:
    struct Items {
        QMenu& LogIn;
        QAction& Quick;
        QAction& LogOut;
        QAction& Separator; // behind the three
    };
    /// `dial` gets the name of the entry that was chosen.
    DialMenu(const Items& items, std::function<void(const std::string& entryName)> dial);

    /// Fits the entries to what can be done.
    void Show(const DialChoices& choices);

    /// Whether anything can be chosen.
    void SetEnabled(bool enabled);

  private:
    void ShowEntries(const std::vector<std::string>& names);
    QAction* NewItem(std::size_t number, const std::string& name);

    Items items_;
    std::function<void(const std::string&)> dial_;
    std::vector<std::string> names_;
    std::string quick_;
};

} // namespace korvalin
