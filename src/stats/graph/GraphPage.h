#pragma once

#include "settings/Keys.h"
#include "stats/StatExport.h"
#include "stats/graph/DrawGraph.h"

#include <QWidget>

#include <memory>
#include <optional>
#include <string>

class QComboBox;
class QHelpEvent;

namespace Ui {
class GraphPage;
}

namespace korvalin {

class Aliases;
class Clock;
class Errors;
class Language;
class MessageBoxes;
class Settings;
struct Locale;

/// The graph of an alias's volume by period, with the controls that choose what it shows. Their captions come
/// with those of the window that it is a part of.
class GraphPage : public QWidget {
    Q_OBJECT

  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        const korvalin::Aliases& Aliases;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Clock& Clock;
        const korvalin::Locale& Locale;
    };
    explicit GraphPage(const Parts& parts, QWidget* parent = nullptr);
    ~GraphPage() override;

    /// Takes up the stored choices again, as at the first opening.
    void LoadSettings();

    /// Shows another alias, as if the user had chosen it.
    void ChooseAlias(const std::string& alias);

    /// What one alias was called is another one from now on; records with it are shown next.
    void AliasRenamed(const std::string& from, const std::string& to);

    /// Shows these records. They stay the caller's and are read again whenever a control changes, so they
    /// must live until others are shown; after a change to them or to an alias they are to be shown again.
    void ShowRecords(const StatRecords& records);

    /// The unit of all volumes, `bytes` above 0.
    void SetUnit(const std::string& name, double bytes);

    /// Renews the texts that are no captions: a change of the language calls it by itself.
    void ApplyTexts();

    /// The graph and its legend as an element of a web page; empty when there is nothing to show.
    std::string Svg();

    /// The periods that the graph shows, as a list. Lives no longer than what is shown.
    ListTexts Texts() const;

    /// What the graph shows: alias, first and last day, unit.
    std::string Title() const;

  protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void FollowToday();
    void ConnectControls();
    void FillAliases();
    void ShowDates();
    void FillTops();

    void CalcGraph();
    void DrawGraph();
    void ShowLegend();
    void ShowTitle();
    std::string LegendEntry(std::int32_t color, int text) const;
    std::optional<GraphScale> Scale();
    std::string PeriodText(const PeriodVolume& period, const GraphScale& scale) const;
    void ShowPeriodAt(const QHelpEvent& help);

    void TakeAlias();
    void TakeDate(QComboBox& combo, SettingKey<Date> key, Date& date);
    void TakePeriodType(int index);
    void TakeMaxPeriods();
    void TakePalette(int index);
    std::string StatText(int number) const;

    Parts parts_;
    std::unique_ptr<Ui::GraphPage> ui_;
    const StatRecords* records_ = nullptr;
    GraphOptions options_;
    GraphView view_;
    PeriodGraph graph_;
    std::optional<GraphLayout> layout_; // while a graph is drawn
    bool scaleReported_ = false;        // once a calculation is enough
};

} // namespace korvalin
