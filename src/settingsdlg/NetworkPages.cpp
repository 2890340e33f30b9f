#include "settingsdlg/NetworkPages.h"

#include "forms/Twips.h"
#include "lang/Language.h"
#include "settingsdlg/ConnectionFields.h"
#include "settingsdlg/NetworkTexts.h"
#include "ui_frmEinstellungen.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QShortcut>

namespace korvalin {
namespace {

constexpr int widestColumn = 400; // logical pixels; a description may be long
constexpr int fittedColumns = 50; // looking at the texts of a thousand columns takes its time

} // namespace

NetworkPages::NetworkPages(const Parts& parts) : parts_(parts), ui_(parts.Controls) {
    ui_.ListView1->setModel(&model_);
    ui_.ListView1->setStyle(&listStyle_);
    ui_.ListView1->horizontalHeader()->setStyle(&listStyle_);
    ui_.framesLayout->setStretchFactor(ui_.ListView1, 1);
    QHeaderView& rows = *ui_.ListView1->verticalHeader();
    rows.setSectionResizeMode(QHeaderView::Fixed);
    rows.setDefaultSectionSize(ui_.ListView1->fontMetrics().height() + 6);
    auto* copy = new QShortcut(QKeySequence::Copy, ui_.ListView1, nullptr, nullptr, Qt::WidgetShortcut);
    connect(copy, &QShortcut::activated, this, &NetworkPages::CopyRows);
    connect(ui_.cmdButton1, &QPushButton::clicked, this, &NetworkPages::cmdButton1_Click);
    Hide();
}

void NetworkPages::ApplyTexts(const QString& listName) {
    ui_.ListView1->setAccessibleName(listName);
    ui_.cmdButton1->setText(QString::fromStdString(parts_.Language.Lng("frmAboutObj", 2)));
}

void NetworkPages::Hide() {
    ui_.ListView1->hide();
    ui_.cmdButton1->hide();
}

void NetworkPages::ShowAdapters() {
    Show(&NetworkPages::AdapterTable);
    ui_.ListView1->setColumnWidth(
        0, std::max(ui_.ListView1->columnWidth(0), TwipsToPixels(AdapterCaptionColumnTwips)));
}

void NetworkPages::ShowAddresses() {
    Show(&NetworkPages::AddressTable);
}

TextTable NetworkPages::AdapterTable() const {
    return BuildAdapterTable(parts_.NetworkTables, parts_.Language, parts_.Locale);
}

TextTable NetworkPages::AddressTable() const {
    return BuildAddressTable(parts_.NetworkTables);
}

void NetworkPages::Show(Build build) {
    build_ = build;
    cmdButton1_Click();
    FitColumns();
    ui_.ListView1->scrollToTop();
    ui_.ListView1->show();
    ui_.cmdButton1->show();
}

void NetworkPages::cmdButton1_Click() {
    model_.SetTable((this->*build_)());
}

void NetworkPages::FitColumns() {
    QTableView& list = *ui_.ListView1;
    for (int column = 0; column < std::min(model_.columnCount(), fittedColumns); ++column) {
        list.resizeColumnToContents(column);
        list.setColumnWidth(column, std::min(list.columnWidth(column), widestColumn));
    }
}

// As a spreadsheet takes it: for those who are asked about their machine.
void NetworkPages::CopyRows() {
    QString text;
    const QModelIndexList rows = ui_.ListView1->selectionModel()->selectedRows();
    if (rows.isEmpty()) return; // the clipboard keeps what it holds
    for (const QModelIndex& row : rows) {
        for (int column = 0; column < model_.columnCount(); ++column) {
            if (column > 0) text += QLatin1Char('\t');
            text += row.siblingAtColumn(column).data().toString();
        }
        text += QLatin1Char('\n');
    }
    QGuiApplication::clipboard()->setText(text);
}

void NetworkPages::ShowConnection() {
    const auto fields = ConnectionFields(parts_.Internet, parts_.Language);
    QLineEdit* const lines[] = {ui_.txtConnInfo0, ui_.txtConnInfo1, ui_.txtConnInfo2, ui_.txtConnInfo3,
                                ui_.txtConnInfo4};
    for (std::size_t i = 0; i < std::size(lines); ++i)
        lines[i]->setText(QString::fromStdString(fields[i]));
    const std::string tcp = TcpText(parts_.NetworkTables, parts_.Language, parts_.Locale);
    ui_.txtConnInfo5->setPlainText(QString::fromStdString(fields.back() + "\n" + tcp));
}

} // namespace korvalin
