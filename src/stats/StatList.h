#pragma once

#include "forms/Styles.h"
#include "stats/StatExport.h"
#include "stats/StatTableModel.h"

#include <QTableView>

#include <functional>
#include <memory>

class QLabel;

namespace korvalin {

/// A list of records or sums: sorted by its headers, its columns as wide as what they show, a note where
/// there are no rows.
class StatList : public QTableView {
    Q_OBJECT

  public:
    enum class Of { Records, Sums };

    explicit StatList(QWidget* parent = nullptr);

    /// To be called once, before anything else.
    void SetUp(Of what, Language& language, const Locale& locale, const StatTableModel::Order& order);

    StatTableModel& Model() { return *model_; }
    const StatTableModel& Model() const { return *model_; }

    void SetUnit(const VolumeUnit& unit);

    /// Makes the columns as wide as what they show of the records and as what they are likely to show.
    void FitColumns(const std::vector<StatRecord>& records, bool mayShrink);
    /// The width in pixels that shows every column, the stretched one with its usual text.
    int WidthOfColumns() const;

    /// The text where there are no rows; empty: none.
    void ShowNote(const std::string& text);
    /// Marks the header by which the rows are sorted.
    void MarkOrder();

    int SelectedCount() const;
    /// Duration and volumes of the selected rows, each behind its caption.
    std::string SelectedSum() const;

    /// The cells of these rows as they are shown. `at` is told which part of them is done. The texts read the
    /// list, which must stay as it is.
    ListTexts Texts(std::vector<int> rows, std::function<void(double fraction)> at) const;

  signals:
    void OrderWanted(int column, Qt::SortOrder direction);
    void SelectionChanged();

  private:
    int WidthOf(std::vector<std::string> texts) const;
    std::string Sample(StatColumn::Field field) const;

    Of what_ = Of::Records;
    Language* language_ = nullptr;
    const Locale* locale_ = nullptr;
    VolumeUnit unit_;
    RoomyStyle style_;
    QLabel* note_; // owned by the viewport
    std::unique_ptr<StatTableModel> model_;
};

} // namespace korvalin
