#include "stats/graph/GraphPage.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "forms/Combos.h"
#include "forms/Twips.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"
#include "settings/Settings.h"
#include "stats/Aliases.h"
#include "stats/graph/GraphLabels.h"
#include "stats/graph/GraphSvg.h"
#include "stats/graph/PictureCanvas.h"
#include "ui_GraphPage.h"

#include <QHelpEvent>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QPixmap>
#include <QSignalBlocker>
#include <QToolTip>

#include <algorithm>
#include <unordered_set>

namespace korvalin {
namespace {

constexpr int maxPeriodsChoices[] = {7, 12, 14, 24, 31, 52, 100, 365, 1000};
constexpr int svgWidth = 800; // pixels
constexpr int svgHeight = 400;
constexpr int legendPixels = 12;

QString ToQt(const std::string& text) {
    return QString::fromStdString(text);
}

// In lower case.
std::unordered_set<std::string> AliasesWithRecords(const StatRecords& records) {
    std::unordered_set<std::string> aliases;
    const void* last = nullptr;
    for (const StatRecord& record : records.List) {
        if (record.Alias.Identity() == last) continue;
        last = record.Alias.Identity();
        aliases.insert(ToLower(record.Alias));
    }
    return aliases;
}

QColor ToQt(std::int32_t color) {
    return QColor(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF);
}

// A square of the colour with the bars' outline.
QIcon LegendIcon(std::int32_t color, double pixelRatio) {
    const QSize size(legendPixels, legendPixels);
    QPixmap square(size * pixelRatio);
    square.setDevicePixelRatio(pixelRatio);
    square.fill(Qt::black);
    QPainter(&square).fillRect(QRect(QPoint(1, 1), size - QSize(2, 2)), ToQt(color));
    return square;
}

// Offers the days and shows one that need not be among them. What is being typed stays.
void FillDates(QComboBox& combo, const std::vector<Date>& days, Date shown, const Locale& locale) {
    if (combo.hasFocus() && combo.lineEdit()->isModified()) return;
    const auto text = [&](Date day) { return ToQt(FormatPattern(day, locale.ShortDate)); };
    const QSignalBlocker quiet(combo);
    combo.clear();
    for (const Date day : days)
        combo.addItem(text(day), day);
    combo.setCurrentIndex(combo.findText(text(shown)));
    combo.setEditText(text(shown));
}

void Check(QCheckBox& box, bool checked) {
    const QSignalBlocker quiet(box);
    box.setChecked(checked);
}

} // namespace

GraphPage::GraphPage(const Parts& parts, QWidget* parent)
    : QWidget(parent), parts_(parts), ui_(std::make_unique<Ui::GraphPage>()) {
    ui_->setupUi(this);
    for (QComboBox* combo : {ui_->cboGFrom, ui_->cboGTill, ui_->cboGMaxPeriods})
        combo->setCompleter(nullptr); // it would make another date of one that is being typed
    for (const int count : maxPeriodsChoices)
        ui_->cboGMaxPeriods->addItem(QString::number(count));
    LoadSettings();
    ConnectControls();
    ui_->PicChart->installEventFilter(this);
}

GraphPage::~GraphPage() = default;

std::string GraphPage::StatText(int number) const {
    return parts_.Language.Lng("frmStatistik", number);
}

// ---- controls

void GraphPage::LoadSettings() {
    Settings& settings = parts_.Settings;
    options_.Alias = settings.Get(Keys::GAlias);
    options_.From = DayOf(settings.Get(Keys::GFrom));
    options_.Till = DayOf(settings.Get(Keys::GTill));
    options_.Period = view_.Period = static_cast<SumPeriod>(settings.Get(Keys::GPeriodType));
    options_.FirstWeekday = QLocale().firstDayOfWeek() % 7; // the toolkit's Sunday is 7
    options_.MaxPeriods = settings.Get(Keys::GMaxPeriods);
    view_.ShowValue = settings.Get(Keys::GShowValue);
    Check(*ui_->boxShowValue, view_.ShowValue);
    const int palette = settings.Get(Keys::GPalette);
    view_.Colors = GraphPalettes.at(static_cast<std::size_t>(palette));
    ui_->cboGMaxPeriods->setEditText(QString::number(options_.MaxPeriods));
    ui_->cboGWeekday->setEnabled(options_.Period == SumPeriod::Week);
    ApplyTexts();
    ShowDates();
}

// A range that reaches up to today does so tomorrow as well.
void GraphPage::FollowToday() {
    const Date till = DayOf(parts_.Settings.Get(Keys::GTill));
    if (till >= DayOf(parts_.Clock.Now())) options_.Till = till;
}

void GraphPage::ConnectControls() {
    const auto onChoice = [this](QComboBox* combo, auto take) {
        connect(combo, &QComboBox::currentIndexChanged, this, take);
    };
    const auto onEntry = [this](QComboBox* combo, auto take) {
        connect(combo, &QComboBox::activated, this, take);
        connect(combo->lineEdit(), &QLineEdit::editingFinished, this, take);
    };
    onChoice(ui_->cboGAlias, [this] { TakeAlias(); });
    onEntry(ui_->cboGFrom, [this] { TakeDate(*ui_->cboGFrom, Keys::GFrom, options_.From); });
    onEntry(ui_->cboGTill, [this] { TakeDate(*ui_->cboGTill, Keys::GTill, options_.Till); });
    onChoice(ui_->cboGPeriodType, [this](int index) { TakePeriodType(index); });
    onChoice(ui_->cboGWeekday, [this](int index) {
        options_.FirstWeekday = index;
        CalcGraph();
    });
    onEntry(ui_->cboGMaxPeriods, [this] { TakeMaxPeriods(); });
    onChoice(ui_->cboGPalette, [this](int index) { TakePalette(index); });
    onChoice(ui_->cboGMax, [this] {
        view_.FixedTop = ui_->cboGMax->currentData().toDouble();
        DrawGraph();
    });
    const auto onDirection = [this](QCheckBox* box, bool GraphOptions::*option, bool GraphView::*shown) {
        connect(box, &QCheckBox::toggled, this, [this, option, shown](bool on) {
            options_.*option = view_.*shown = on;
            CalcGraph();
        });
    };
    onDirection(ui_->boxGSend, &GraphOptions::Send, &GraphView::Send);
    onDirection(ui_->boxGReceived, &GraphOptions::Received, &GraphView::Received);
    connect(ui_->boxShowValue, &QCheckBox::toggled, this, [this](bool on) {
        view_.ShowValue = on;
        parts_.Settings.Set(Keys::GShowValue, on);
        DrawGraph();
    });
    connect(ui_->cmdGDraw, &QPushButton::clicked, this, [this] { CalcGraph(); });
    connect(ui_->PicChart, &PictureBox::DrawingLost, this, [this] { DrawGraph(); });
}

void GraphPage::ApplyTexts() {
    const auto refill = [](QComboBox& combo, const QStringList& texts, int index) {
        const QSignalBlocker quiet(combo);
        combo.clear();
        combo.addItems(texts);
        combo.setCurrentIndex(index);
    };
    QStringList periods;
    for (const int number : {2, 3, 4})
        periods << ToQt(parts_.Language.Lng("frmStatistikObj", number)).remove(QLatin1Char('&'));
    refill(*ui_->cboGPeriodType, periods, static_cast<int>(options_.Period));
    QStringList weekdays;
    for (const std::string& name : parts_.Locale.DayNames)
        weekdays << ToQt(name);
    refill(*ui_->cboGWeekday, weekdays, options_.FirstWeekday);
    refill(*ui_->cboGPalette, {ToQt(StatText(49)), ToQt(StatText(50))}, parts_.Settings.Get(Keys::GPalette));
    FillTops();
    ShowLegend();
    ShowTitle();
}

void GraphPage::FillAliases() {
    std::vector<std::string> names;
    for (std::size_t i = 1; i <= parts_.Aliases.AliasCount(); ++i)
        names.push_back(parts_.Aliases.Alias(i).Alias);
    const auto before = [&](const std::string& left, const std::string& right) {
        return parts_.Locale.Collate(left, right) < 0;
    };
    std::stable_sort(names.begin(), names.end(), before);

    auto chosen = std::find_if(names.begin(), names.end(), [this](const std::string& name) {
        return EqualsNoCase(name, options_.Alias);
    });
    if (chosen == names.end()) {
        const auto withRecords = AliasesWithRecords(*records_);
        chosen = std::find_if(names.begin(), names.end(),
                              [&](const std::string& name) { return withRecords.count(ToLower(name)) > 0; });
    }
    const QSignalBlocker quiet(ui_->cboGAlias);
    ui_->cboGAlias->clear();
    for (const std::string& name : names)
        ui_->cboGAlias->addItem(ToQt(name));
    ui_->cboGAlias->setCurrentIndex(chosen == names.end() ? -1 : static_cast<int>(chosen - names.begin()));
    if (chosen != names.end()) options_.Alias = *chosen;
}

void GraphPage::ShowDates() {
    const Date today = parts_.Clock.Now();
    FillDates(*ui_->cboGFrom, FirstDayChoices(today, graph_.FirstRecord), options_.From, parts_.Locale);
    FillDates(*ui_->cboGTill, LastDayChoices(today, graph_.LastRecord), options_.Till, parts_.Locale);
}

void GraphPage::FillTops() {
    std::vector<double> tops = RoundTopsAround(graph_.Maximum / view_.UnitBytes);
    if (std::find(tops.begin(), tops.end(), view_.FixedTop) == tops.end() && view_.FixedTop > 0)
        tops.insert(std::upper_bound(tops.begin(), tops.end(), view_.FixedTop), view_.FixedTop);

    QComboBox& combo = *ui_->cboGMax;
    const QSignalBlocker quiet(combo);
    combo.clear();
    combo.addItem(ToQt(StatText(40)), 0.0);
    for (const double top : tops) {
        combo.addItem(ToQt(ScaleText(top, DecimalsOf(top), parts_.Locale) + " " + view_.UnitName), top);
        if (top == view_.FixedTop) combo.setCurrentIndex(combo.count() - 1);
    }
}

// ---- what the user changes

void GraphPage::TakeAlias() {
    options_.Alias = TextOf(*ui_->cboGAlias);
    parts_.Settings.Set(Keys::GAlias, options_.Alias);
    CalcGraph();
}

void GraphPage::TakeDate(QComboBox& combo, SettingKey<Date> key, Date& date) {
    const std::string text = TextOf(combo);
    combo.lineEdit()->setModified(false); // it is typed to its end
    if (text == FormatPattern(date, parts_.Locale.ShortDate)) return;
    const int offered = combo.findText(ToQt(text));
    if (offered >= 0) {
        date = combo.itemData(offered).toDouble();
    } else if (text.empty() || ParseDate(text, parts_.Locale)) {
        date = DayOf(parts_.Settings.Validate(key, text));
    } // anything else is no date: the one before comes back
    CalcGraph();
    // A range that reaches up to today is to do so tomorrow as well; today is what a missing date stands for.
    const bool tillToday = &date == &options_.Till && date >= DayOf(parts_.Clock.Now());
    if (tillToday) {
        parts_.Settings.Remove(key);
    } else {
        parts_.Settings.Set(key, date);
    }
}

void GraphPage::TakePeriodType(int index) {
    options_.Period = view_.Period = static_cast<SumPeriod>(index);
    ui_->cboGWeekday->setEnabled(options_.Period == SumPeriod::Week);
    parts_.Settings.Set(Keys::GPeriodType, index);
    CalcGraph();
}

void GraphPage::TakeMaxPeriods() {
    const std::string text = TextOf(*ui_->cboGMaxPeriods);
    const int count = parts_.Settings.Validate(Keys::GMaxPeriods, text);
    ui_->cboGMaxPeriods->setEditText(QString::number(count));
    if (count == options_.MaxPeriods) return;
    options_.MaxPeriods = count;
    parts_.Settings.Set(Keys::GMaxPeriods, count);
    CalcGraph();
}

void GraphPage::TakePalette(int index) {
    view_.Colors = GraphPalettes.at(static_cast<std::size_t>(index));
    parts_.Settings.Set(Keys::GPalette, index);
    ShowLegend();
    DrawGraph();
}

void GraphPage::ChooseAlias(const std::string& alias) {
    const int index = ui_->cboGAlias->findText(ToQt(alias), Qt::MatchFixedString);
    if (index < 0) return;
    const QSignalBlocker quiet(ui_->cboGAlias); // it may be the one shown, but not the one stored
    ui_->cboGAlias->setCurrentIndex(index);
    TakeAlias();
}

void GraphPage::AliasRenamed(const std::string& from, const std::string& to) {
    if (!EqualsNoCase(options_.Alias, from)) return;
    options_.Alias = to;
    if (EqualsNoCase(parts_.Settings.Get(Keys::GAlias), from)) parts_.Settings.Set(Keys::GAlias, to);
}

void GraphPage::ShowRecords(const StatRecords& records) {
    records_ = &records;
    FollowToday();
    FillAliases();
    CalcGraph();
}

void GraphPage::SetUnit(const std::string& name, double bytes) {
    // A fixed top stays about where it is.
    if (view_.FixedTop > 0) view_.FixedTop = RoundTop(view_.FixedTop * view_.UnitBytes / bytes);
    view_.UnitName = name;
    view_.UnitBytes = bytes;
    FillTops();
    DrawGraph();
}

// ---- the graph

void GraphPage::CalcGraph() {
    parts_.Errors.Step("CalcGraph", [this] {
        if (records_ == nullptr) return;
        graph_ = korvalin::CalcGraph(*records_, options_, parts_.Aliases, parts_.Clock.Now());
        scaleReported_ = false;
        if (graph_.Periods.empty()) return;
        options_.From = graph_.From;
        options_.Till = graph_.Till;
    });
    ShowDates();
    FillTops();
    DrawGraph();
}

std::optional<GraphScale> GraphPage::Scale() {
    if (!HasGraph(graph_, view_)) return std::nullopt;
    const std::optional<GraphScale> scale = ScaleOf(graph_, view_);
    if (!scale && !std::exchange(scaleReported_, true)) {
        parts_.MessageBoxes.Show(StatText(41), std::string(ProgramTitle), MessageIcon::Warning,
                                 MessageButtons::Ok);
    }
    return scale;
}

void GraphPage::DrawGraph() {
    parts_.Errors.Step("DrawGraph", [this] {
        layout_.reset();
        const std::optional<GraphScale> scale = Scale();
        PictureCanvas canvas(*ui_->PicChart);
        if (scale) layout_ = korvalin::DrawGraph(canvas, graph_, view_, *scale, parts_.Locale);
    });
    ShowTitle();
}

void GraphPage::ShowLegend() {
    ui_->boxGSend->setIcon(LegendIcon(view_.Colors.Sent, devicePixelRatioF()));
    ui_->boxGReceived->setIcon(LegendIcon(view_.Colors.Received, devicePixelRatioF()));
}

void GraphPage::ShowTitle() {
    const QString title = ToQt(Title());
    ui_->lblGTitle->setText(title);
    ui_->PicChart->setAccessibleName(title);
    const std::size_t shown = graph_.Periods.size();
    const bool cut = shown < graph_.PeriodsInRange;
    ui_->lblGNote->setVisible(cut);
    if (cut)
        ui_->lblGNote->setText(ToQt(fmt::format("{} {} / {}", StatText(48), shown, graph_.PeriodsInRange)));
}

std::string GraphPage::Title() const {
    if (graph_.Periods.empty()) return options_.Alias;
    const PeriodVolume range{graph_.Periods.front().Begin, graph_.Periods.back().End};
    return options_.Alias + ", " + PeriodRange(range, parts_.Locale) + ", " + view_.UnitName;
}

std::string GraphPage::LegendEntry(std::int32_t color, int text) const {
    return "<span style=\"color:" + ToQt(color).name().toStdString() + "\">\u25A0</span> " +
           EscapeMarkup(StatText(text));
}

ListTexts GraphPage::Texts() const {
    ListTexts texts;
    texts.Headers = {StatText(24), StatText(16), StatText(17), StatText(9)};
    texts.IsFigure = {false, true, true, true};
    texts.RowCount = graph_.Periods.size();
    texts.UnitName = view_.UnitName;
    texts.Cell = [this](std::size_t row, std::size_t column) {
        const PeriodVolume& period = graph_.Periods[row];
        if (column == 0) return PeriodRange(period, parts_.Locale);
        const double bytes = ShownVolume(period, column != 2, column != 1);
        return FormatNumber(bytes / view_.UnitBytes, "#,##0.00", parts_.Locale) + " " + view_.UnitName;
    };
    return texts;
}

std::string GraphPage::Svg() {
    const std::optional<GraphScale> scale = Scale();
    if (!scale) return {};
    GraphSvg svg(svgWidth, svgHeight, Title());
    korvalin::DrawGraph(svg, graph_, view_, *scale, parts_.Locale);
    std::string legend;
    if (view_.Send) legend += LegendEntry(view_.Colors.Sent, 16) + " ";
    if (view_.Received) legend += LegendEntry(view_.Colors.Received, 17);
    return "<figure>\n" + svg.Text() + "<figcaption>" + legend + "</figcaption>\n</figure>\n";
}

std::string GraphPage::PeriodText(const PeriodVolume& period, const GraphScale& scale) const {
    std::string text = PeriodRange(period, parts_.Locale);
    const auto line = [&](int caption, double bytes) {
        text += "\n" + StatText(caption) + ": " + VolumeText(bytes, view_, scale.Decimals + 1, parts_.Locale);
    };
    if (view_.Send) line(16, period.BytesTransmitted);
    if (view_.Received) line(17, period.BytesReceived);
    if (view_.Send && view_.Received) line(9, period.BytesTransmitted + period.BytesReceived);
    return text;
}

void GraphPage::ShowPeriodAt(const QHelpEvent& help) {
    const std::optional<GraphScale> scale = Scale();
    const auto index = layout_ && scale ? layout_->PeriodAt(PixelsToTwips(help.x())) : std::nullopt;
    if (!index) return QToolTip::hideText();
    // It goes when the mouse leaves the period's slot.
    const double left = layout_->Left + layout_->Slot() * static_cast<double>(*index);
    const QRect slot(TwipsToPixels(left), 0, std::max(TwipsToPixels(layout_->Slot()), 1),
                     ui_->PicChart->height());
    QToolTip::showText(help.globalPos(), ToQt(PeriodText(graph_.Periods[*index], *scale)), ui_->PicChart,
                       slot);
}

bool GraphPage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::eventFilter(watched, event);
    ShowPeriodAt(static_cast<const QHelpEvent&>(*event));
    return true;
}

void GraphPage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) ApplyTexts();
    if (event->type() == QEvent::PaletteChange) DrawGraph();
}

} // namespace korvalin
