#include "display/LinesMenu.h"

#include "forms/NameText.h"

#include <QMenu>

#include <algorithm>

namespace korvalin {

void LinesMenu::Refresh(const LineState& lines, const InfoTexts& texts) {
    if (lines.LineCount <= 1) return Clear();
    separator_.setVisible(true);
    while (items_.size() > lines.LineCount) {
        delete items_.back().Action;
        items_.pop_back();
    }
    for (std::size_t line = 1; line <= lines.LineCount; ++line) {
        const std::string& entry = lines.LineTable(line).EntryName;
        if (entry.empty()) continue;
        Item& item = Load(line);
        if (item.Entry == entry) continue;
        item.Entry = entry;
        item.Action->setText(MenuName(entry, menu_.fontMetrics()));
        item.Action->setVisible(true);
    }
    // The chart shows the last line when its own is gone.
    Check(std::min(static_cast<std::size_t>(std::max(texts.ChartLineNo, 1)), lines.LineCount));
}

LinesMenu::Item& LinesMenu::Load(std::size_t line) {
    while (items_.size() < line) {
        const std::size_t number = items_.size() + 1;
        auto* item = new QAction(&menu_);
        item->setObjectName(QStringLiteral("mnuLines%1").arg(number));
        item->setCheckable(true);
        item->setVisible(false);
        QObject::connect(item, &QAction::triggered, &menu_, [this, number] { emit Chosen(number); });
        const QList<QAction*> all = menu_.actions();
        QAction* last = items_.empty() ? &separator_ : items_.back().Action;
        menu_.insertAction(all.value(all.indexOf(last) + 1), item);
        items_.push_back({item, {}});
    }
    return items_[line - 1];
}

void LinesMenu::Check(std::size_t line) {
    for (std::size_t i = 0; i < items_.size(); ++i)
        items_[i].Action->setChecked(i + 1 == line);
}

void LinesMenu::Clear() {
    for (const Item& item : items_)
        delete item.Action;
    items_.clear();
    separator_.setVisible(false);
}

} // namespace korvalin
