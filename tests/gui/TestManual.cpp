#include "desktop/SettingsDialog.h"
#include "dialogs/Manual.h"
#include "dialogs/frmAbout.h"
#include "gui/MainWindowFixture.h"
#include "stats/frmStatistik.h"

#include <QtTest>
#include <QtWidgets>

using namespace korvalin;

namespace {

/// All windows that open the manual, which lies beside the program.
class ManualKey : public MainWindow {
  protected:
    void SetUp() override {
        Start();
        std::filesystem::create_directory_symlink(KORVALIN_RESOURCES "/../docs/manual",
                                                  programFolder / "manual");
        manual = std::make_unique<Manual>(Manual::Parts{program->language, shell, boxes});
        about = std::make_unique<frmAbout>(frmAbout::Parts{program->language, shell, "2.1.700"});
        settingsDialog.reset(MakeSettingsDialog(*program, AllPorts(), *window));
        statistics = std::make_unique<frmStatistik>(frmStatistik::Parts{
            settings, program->language, program->errors, boxes, program->statFile, program->aliases,
            program->monthSums, program->periodSums, clock, program->locale, program->recorder});
        program->LoadStatistics();
        statistics->Open();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !statistics->Loading(); }));
    }
    // The place that the key asks for: its language, page and anchor.
    std::string Asked(QWidget& at) {
        shell.Addresses.clear();
        QWidget* focus = at.focusWidget() != nullptr ? at.focusWidget() : &at;
        QTest::keyClick(focus, Qt::Key_F1);
        QCoreApplication::processEvents();
        if (shell.Addresses.size() != 1) return std::to_string(shell.Addresses.size()) + " pages";
        const QUrl address(QString::fromStdString(shell.Addresses[0]));
        QFile page(address.toLocalFile());
        if (!page.open(QIODevice::ReadOnly)) return "no file " + shell.Addresses[0];
        const QString id = QStringLiteral("id=\"%1\"").arg(address.fragment());
        if (address.hasFragment() && !page.readAll().contains(id.toUtf8()))
            return "no anchor " + shell.Addresses[0];
        return shell.Addresses[0].substr(shell.Addresses[0].find("/manual/") + 8);
    }

    std::unique_ptr<Manual> manual;
    std::unique_ptr<frmAbout> about;
    std::unique_ptr<frmEinstellungen> settingsDialog;
    std::unique_ptr<frmStatistik> statistics;
};

TEST_F(ManualKey, OpensAtWhatIsInFrontInTheProgramsLanguage) {
    auto* tabs = statistics->findChild<QTabWidget*>();
    auto* tree = settingsDialog->findChild<QTreeWidget*>();
    for (const auto& [code, name] : {std::pair("GER", "de/"), {"ENG", "en/"}}) {
        ASSERT_TRUE(program->language.UseLanguage(code));
        const std::string pages = name;
        EXPECT_EQ(Asked(*window), pages + "monitor.html");
        EXPECT_EQ(Asked(*window->findChild<QMenu*>(QStringLiteral("mnuTrayIcon"))), pages + "monitor.html");
        EXPECT_EQ(Asked(*about), pages + "updates.html#about");
        for (const int tab : {0, 1, 2}) {
            tabs->setCurrentIndex(tab);
            const char* const anchors[] = {"list", "graph", "sums"};
            EXPECT_EQ(Asked(*statistics), pages + "statistics.html#" + anchors[tab]);
        }
        for (QTreeWidgetItemIterator node(tree); *node != nullptr; ++node) {
            tree->setCurrentItem(*node);
            EXPECT_EQ(Asked(*settingsDialog),
                      pages + "settings.html#" + (*node)->data(0, Qt::UserRole).toString().toStdString());
        }
    }
}

TEST_F(ManualKey, SaysWhenThereIsNoManualOrNothingOpensIt) {
    shell.Starts = false;
    EXPECT_EQ(Asked(*about), "0 pages");
    EXPECT_TRUE(boxes.Take().Text.starts_with("No program on this system opens the manual:\n"));
    std::filesystem::remove(programFolder / "manual");
    EXPECT_EQ(Asked(*about), "0 pages");
    EXPECT_TRUE(boxes.Take().Text.starts_with("The manual was not found:\n"));
    std::filesystem::create_directories(folder / "share/doc/korvalin/manual");
    EXPECT_EQ(manual->Folder(), folder / "share/doc/korvalin/manual") << "installed on a system";
}

TEST_F(ManualKey, WithShiftEveryControlOfTheSettingsSaysWhatItIsFor) {
    settingsDialog->show();
    int answers = 0;
    for (QWidget* control : settingsDialog->findChildren<QWidget*>()) {
        if ((control->focusPolicy() & Qt::TabFocus) == 0 ||
            control->objectName().startsWith(QLatin1String("qt_")))
            continue;
        const QWidget* part = control;
        while (part != settingsDialog.get() && part->whatsThis().isEmpty())
            part = part->parentWidget();
        EXPECT_NE(part, settingsDialog.get()) << control->objectName().toStdString();
        ++answers;
    }
    EXPECT_GT(answers, 80);
    QTest::keyClick(settingsDialog->findChild<QWidget*>(QStringLiteral("boxAutoStart")), Qt::Key_F1,
                    Qt::ShiftModifier);
    const QWidgetList shown = QApplication::topLevelWidgets();
    EXPECT_TRUE(std::any_of(shown.begin(), shown.end(), [](const QWidget* widget) {
        return widget->isVisible() && widget->inherits("QWhatsThat");
    }));
    EXPECT_TRUE(shell.Addresses.empty());
}

} // namespace
