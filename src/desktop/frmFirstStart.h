#pragma once

#include "display/TrayModel.h"

#include <QDialog>

#include <memory>
#include <string>

class QLabel;

namespace Ui {
class frmFirstStart;
}

namespace korvalin {

class Aliases;
class Language;
class Settings;
struct LineState;

/// Tells who has just chosen a language for the first time what there is to see, and asks for the tariff of
/// the line in the chart.
class frmFirstStart : public QDialog {
    Q_OBJECT

  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Aliases& Aliases;
        const korvalin::LineState& LineState;
        const korvalin::InfoTexts& InfoTexts;
    };
    explicit frmFirstStart(const Parts& parts);
    ~frmFirstStart() override;

    /// Shows it in front, without holding up anything.
    void Open();

  signals:
    void TariffChanged();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void ApplyTexts();
    void ShowLine();
    void ShowBars();
    void ShowBar(QLabel& picture, const QLabel& meaning, const TrayBars& bar);
    void cmdOK_Click();

    Parts parts_;
    std::unique_ptr<Ui::frmFirstStart> ui_;
    std::string lineName_; ///< empty while none is connected
};

} // namespace korvalin
