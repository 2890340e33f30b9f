#pragma once

#include "display/InfoTexts.h"
#include "traffic/LineRecord.h"

#include <QAction>

#include <string>
#include <vector>

class QMenu;

namespace korvalin {

/// The menu array mnuLines: item 0 is a separator, item i chooses line i for the chart. Shown with several
/// lines only.
class LinesMenu : public QObject {
    Q_OBJECT

  public:
    /// `separator` is item 0 and stands in `menu`; the items follow it.
    LinesMenu(QMenu& menu, QAction& separator) : menu_(menu), separator_(separator) {}

    /// Fits the items to the lines.
    void Refresh(const LineState& lines, const InfoTexts& texts);

    /// Checks item `line` and no other.
    void Check(std::size_t line);

  signals:
    void Chosen(std::size_t line);

  private:
    void Clear();
    struct Item {
        QAction* Action; // owned by the menu
        std::string Entry;
    };
    Item& Load(std::size_t line);

    QMenu& menu_;
    QAction& separator_;
    std::vector<Item> items_; // item i at i - 1
};

} // namespace korvalin
