#include "desktop/frmFirstStart.h"

#include "base/Locale.h"
#include "display/TrayIcon.h"
#include "forms/Colors.h"
#include "forms/NameText.h"
#include "forms/ProgramIcon.h"
#include "lang/ApplyFormTexts.h"
#include "lang/Language.h"
#include "settings/Settings.h"
#include "stats/Aliases.h"
#include "traffic/LineRecord.h"
#include "ui_frmFirstStart.h"

#include <QEvent>
#include <QRegularExpressionValidator>

namespace korvalin {
namespace {

constexpr int picturePixels = 24;

const QRegularExpression possibleVolume(QStringLiteral("[0-9]{0,6}|1000000"));

// Bars that are full, by a volume without an allowance.
TrayBars FullBars() {
    InfoTexts texts;
    const auto full = std::to_string(texts.TrayMaxRate);
    texts.RateULText = texts.RateDLText = full;
    return MakeTrayBars(texts, PeriodUse{1e6 * texts.TrayMaxVol}, Locale());
}

} // namespace

frmFirstStart::frmFirstStart(const Parts& parts) : parts_(parts), ui_(std::make_unique<Ui::frmFirstStart>()) {
    ui_->setupUi(this);
    setWindowIcon(ProgramIcon());
    ui_->lblLine->setTextFormat(Qt::PlainText);
    ui_->txtFreeVolume->setValidator(new QRegularExpressionValidator(possibleVolume, this));
    const std::size_t index = parts_.InfoTexts.LineIndex;
    if (index >= 1 && index <= parts_.LineState.LineCount)
        lineName_ = parts_.LineState.LineTable(index).EntryName;
    ApplyTexts();
    ShowLine();
    ShowBars();
    connect(ui_->cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
}

frmFirstStart::~frmFirstStart() = default;

void frmFirstStart::Open() {
    show();
    raise();
    activateWindow();
}

void frmFirstStart::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) ApplyTexts();
}

void frmFirstStart::ApplyTexts() {
    ApplyFormTexts(*this, parts_.Language);
    const auto text = [this](int number) {
        return QString::fromStdString(parts_.Language.Lng("frmFirstStart", number));
    };
    ui_->lblLine->setText(lineName_.empty() ? text(11)
                                            : text(10) + QLatin1Char(' ') + OneLineName(lineName_));
    ui_->txtFreeVolume->setPlaceholderText(text(12));
}

// Without a line there is nobody whose tariff it could be.
void frmFirstStart::ShowLine() {
    ui_->txtFreeVolume->setEnabled(!lineName_.empty());
    ui_->numMonthStartDay->setEnabled(!lineName_.empty());
    if (lineName_.empty()) return;
    const std::string alias = parts_.Aliases.GetAlias(lineName_);
    if (const int stored = parts_.Settings.Get(Keys::FreeVolume(alias)))
        ui_->txtFreeVolume->setText(QString::number(stored));
    ui_->numMonthStartDay->setValue(parts_.Settings.Get(Keys::MonthStartDay(alias)));
}

void frmFirstStart::ShowBars() {
    const TrayBars bars = FullBars();
    ShowBar(*ui_->imgVolume, *ui_->lblVolume, {bars.Volume, {}, {}});
    ShowBar(*ui_->imgUpload, *ui_->lblUpload, {{}, bars.Upload, {}});
    ShowBar(*ui_->imgDownload, *ui_->lblDownload, {{}, {}, bars.Download});
}

void frmFirstStart::ShowBar(QLabel& picture, const QLabel& meaning, const TrayBars& bar) {
    const int pixels = static_cast<int>(picturePixels * devicePixelRatioF());
    QImage image = DrawTrayPicture(bar, ToColor(parts_.InfoTexts.ChartBackgroundColor), pixels);
    image.setDevicePixelRatio(devicePixelRatioF());
    picture.setPixmap(QPixmap::fromImage(image));
    picture.setAccessibleName(meaning.text());
}

void frmFirstStart::cmdOK_Click() {
    accept();
    if (lineName_.empty()) return;
    const std::string alias = parts_.Aliases.GetAlias(lineName_);
    parts_.Settings.Set(Keys::FreeVolume(alias), ui_->txtFreeVolume->text().toInt());
    parts_.Settings.Set(Keys::MonthStartDay(alias), ui_->numMonthStartDay->value());
    parts_.Aliases.FillAliasInfo(parts_.Aliases.AliasIndex(alias));
    emit TariffChanged();
}

} // namespace korvalin
