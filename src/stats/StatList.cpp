#include "stats/StatList.h"

#include "lang/Language.h"

#include <QHeaderView>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace korvalin {
namespace {

using Field = StatColumn::Field;

constexpr int mostNameCharacters = 40; // of an alias in a column that fits what it shows

const std::string margin = "----";

} // namespace

StatList::StatList(QWidget* parent) : QTableView(parent), note_(new QLabel(viewport())) {
    note_->setObjectName(QStringLiteral("lblEmpty"));
    note_->setAlignment(Qt::AlignCenter);
    note_->setWordWrap(true);
    note_->setAttribute(Qt::WA_TransparentForMouseEvents);
    (new QVBoxLayout(viewport()))->addWidget(note_);
}

void StatList::SetUp(Of what, Language& language, const Locale& locale, const StatTableModel::Order& order) {
    what_ = what;
    language_ = &language;
    locale_ = &locale;
    model_ =
        std::make_unique<StatTableModel>(what == Of::Sums ? SumColumns() : RecordColumns(), language, locale);
    model_->SetOrder(order, {});
    setModel(model_.get());
    setStyle(&style_);
    QHeaderView& header = *horizontalHeader();
    header.setStyle(&style_);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    header.setSectionsClickable(true);
    header.setStretchLastSection(what == Of::Records); // a note may be long, a figure would only be far away
    MarkOrder();
    header.setSortIndicatorShown(true);
    connect(&header, &QHeaderView::sortIndicatorChanged, this, &StatList::OrderWanted);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &StatList::SelectionChanged);
}

void StatList::SetUnit(const VolumeUnit& unit) {
    unit_ = unit;
    model_->SetUnit(unit);
}

int StatList::WidthOf(std::vector<std::string> texts) const {
    int width = 0;
    for (const std::string& text : texts)
        width = std::max(width, fontMetrics().horizontalAdvance(QString::fromStdString(text)));
    return width;
}

// A note begins with when its record was made.
std::string StatList::Sample(Field field) const {
    const bool isNote = field == Field::Info;
    const std::string text = SampleText(isNote ? Field::LogIn : field, what_ == Of::Sums, *locale_);
    return isNote ? text + " " + language_->Lng("modStats", 4) : text;
}

void StatList::FitColumns(const std::vector<StatRecord>& records, bool mayShrink) {
    const int widest = fontMetrics().averageCharWidth() * mostNameCharacters;
    QHeaderView& header = *horizontalHeader();
    for (int column = 0; column < model_->columnCount(); ++column) {
        const Field field = model_->Columns()[static_cast<std::size_t>(column)].Shows;
        std::vector<std::string> texts = WidestTexts(records, field, unit_, *locale_);
        texts.push_back(Sample(field));
        int width = WidthOf(std::move(texts));
        if (field == Field::Alias) width = std::min(width, widest);
        width = std::max(width + WidthOf({margin}), header.sectionSizeHint(column));
        header.resizeSection(column, mayShrink ? width : std::max(width, header.sectionSize(column)));
    }
}

int StatList::WidthOfColumns() const {
    int width = 0;
    for (int column = 0; column < model_->columnCount(); ++column) {
        const Field field = model_->Columns()[static_cast<std::size_t>(column)].Shows;
        if (isColumnHidden(column)) continue;
        // The stretched one's width says nothing.
        width += field == Field::Info ? WidthOf({margin + Sample(field)}) : columnWidth(column);
    }
    return width;
}

void StatList::ShowNote(const std::string& text) {
    note_->setText(QString::fromStdString(text));
    note_->setVisible(!text.empty());
}

void StatList::MarkOrder() {
    const QSignalBlocker quiet(horizontalHeader());
    horizontalHeader()->setSortIndicator(model_->ChosenOrder().Column, model_->ChosenOrder().Direction);
}

int StatList::SelectedCount() const {
    int count = 0;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        count += range.height();
    return count;
}

std::string StatList::SelectedSum() const {
    StatRecord sum;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            sum.Duration += model_->Record(row).Duration;
            sum.BytesTransmitted += model_->Record(row).BytesTransmitted;
            sum.BytesReceived += model_->Record(row).BytesReceived;
        }
    }
    std::string text;
    for (const StatColumn& column : model_->Columns()) {
        if (column.Shows == Field::Duration || column.Shows == Field::BytesTransmitted ||
            column.Shows == Field::BytesReceived || column.Shows == Field::Total)
            text += "   " + language_->Lng("frmStatistik", column.HeaderText) + ": " +
                    CellText(sum, column.Shows, unit_, *locale_);
    }
    return text;
}

ListTexts StatList::Texts(std::vector<int> rows, std::function<void(double fraction)> at) const {
    ListTexts texts;
    for (int column = 0; column < model_->columnCount(); ++column) {
        const Field field = model_->Columns()[static_cast<std::size_t>(column)].Shows;
        if (field == Field::FileIndex) continue; // the last one
        texts.Headers.push_back(model_->Header(column));
        texts.IsFigure.push_back(IsFigure(field));
    }
    texts.RowCount = rows.size();
    texts.UnitName = unit_.Name;
    texts.Cell = [this, at = std::move(at), rows = std::move(rows)](std::size_t row, std::size_t column) {
        if (column == 0) at(static_cast<double>(row) / static_cast<double>(rows.size()));
        return model_->Text(rows[row], static_cast<int>(column));
    };
    return texts;
}

} // namespace korvalin
