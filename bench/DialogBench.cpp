// The settings dialog: from the click until its first page is painted, and what each change to the preview
// takes. Prints a JSON object with milliseconds.
#include "BenchProgram.h"
#include "cli/ConsoleMessageBoxes.h"
#include "desktop/SettingsDialog.h"
#include "display/frmMain.h"
#include "platform/NotificationArea.h"
#include "platform/qt/QtEvents.h"

#include <QApplication>
#include <QCheckBox>
#include <QFontDatabase>
#include <QTreeWidget>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iostream>

namespace korvalin {
namespace {

class NoTray : public NotificationArea {
  public:
    void Plug(Hooks) override {}
    TrayHost Host() const override { return TrayHost::Absent; }
    void Add(const QIcon&, const std::string&, QMenu&) override {}
    void Remove() override {}
    void SetIcon(const QIcon&) override {}
    void SetTip(const std::string&) override {}
    std::vector<int> IconSizes() const override { return {}; }
};

class DialogBench {
  public:
    explicit DialogBench(const std::filesystem::path& folder) : program_(folder, events_, boxes_) {
        window_ = std::make_unique<frmMain>(frmMain::Parts{
            program_->settings, program_->language, screen_, program_->samplingLoop, program_->lines,
            program_->rateHistory, program_->infoTexts, program_->liveTexts, program_->monthSums,
            program_->errors, program_.SystemTime(), program_->locale, tray_, boxes_, program_->dialing});
        window_->Form_Load();
        QCoreApplication::processEvents();
    }

    double Open() {
        const Stopwatch watch;
        dialog_.reset(MakeSettingsDialog(*program_, program_.AllPorts(), *window_));
        dialog_->Open();
        QCoreApplication::processEvents();
        dialog_->findChild<QTreeWidget*>()->viewport()->repaint();
        return watch.Milliseconds();
    }

    /// The median of many changes.
    double Change() {
        auto* box = dialog_->findChild<QCheckBox*>(QStringLiteral("boxDL7"));
        std::vector<double> times;
        for (int i = 0; i < 201; ++i) {
            const Stopwatch watch;
            box->toggle();
            dialog_->findChild<QWidget*>(QStringLiteral("Pic"))->repaint();
            times.push_back(watch.Milliseconds());
        }
        std::nth_element(times.begin(), times.begin() + 100, times.end());
        return times[100];
    }

  private:
    QtEvents events_;
    ConsoleMessageBoxes boxes_;
    BenchProgram program_;
    NoScreen screen_;
    NoTray tray_;
    std::unique_ptr<frmMain> window_;
    std::unique_ptr<frmEinstellungen> dialog_;
};

} // namespace
} // namespace korvalin

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::cerr << "dialogbench FOLDER\n";
        return EXIT_FAILURE;
    }
    korvalin::DialogBench bench(argv[1]);
    nlohmann::json result;
    result["first"] = bench.Open();
    result["change"] = bench.Change();
    result["again"] = bench.Open();
    result["fonts"] = QFontDatabase::families().size();
    std::cout << result << "\n";
    return EXIT_SUCCESS;
}
