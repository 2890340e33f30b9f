#include "display/DialMenu.h"

#include "forms/NameText.h"
#include "forms/Styles.h"

#include <QMenu>

namespace korvalin {

DialMenu::DialMenu(const Items& items) : items_(items) {
    auto* style = new LongMenuStyle;
    style->setParent(&items_.LogIn);
    items_.LogIn.setStyle(style);
    items_.LogIn.setToolTipsVisible(true);
    QObject::connect(&items_.Quick, &QAction::triggered, &items_.LogIn, [this] { emit Chosen(quick_); });
}

void DialMenu::Show(const DialChoices& choices) {
    ShowEntries(choices.Entries);
    quick_ = choices.Quick;
    items_.Quick.setText(MenuName(quick_, items_.LogIn.fontMetrics()));
    items_.Quick.setVisible(!quick_.empty());
    items_.LogOut.setVisible(choices.HangUp);
    items_.Separator.setVisible(choices.HangUp || !choices.Entries.empty());
}

void DialMenu::SetEnabled(bool enabled) {
    for (QAction* item : {&items_.Quick, &items_.LogOut, items_.LogIn.menuAction()})
        item->setEnabled(enabled);
}

// A menu that is open stays as it is while its entries do.
void DialMenu::ShowEntries(const std::vector<std::string>& names) {
    items_.LogIn.menuAction()->setVisible(!names.empty());
    if (names.empty()) items_.LogIn.close();
    if (names == names_) return;
    names_ = names;
    items_.LogIn.clear();
    for (std::size_t i = 0; i < names.size(); ++i)
        items_.LogIn.addAction(NewItem(i + 1, names[i]));
}

QAction* DialMenu::NewItem(std::size_t number, const std::string& name) {
    auto* item = new QAction(MenuName(name, items_.LogIn.fontMetrics()), &items_.LogIn);
    item->setObjectName(QStringLiteral("mnuLogInLine%1").arg(number));
    item->setToolTip(ToolTipName(name));
    QObject::connect(item, &QAction::triggered, &items_.LogIn, [this, name] { emit Chosen(name); });
    return item;
}

} // namespace korvalin
