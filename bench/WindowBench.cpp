// The statistics window on a large file, operation by operation: each takes from the user's deed until the
// list is painted again; and the list of many network adapters. Prints a JSON object with milliseconds.
#include "BenchProgram.h"
#include "ManyAdapters.h"
#include "platform/MessageBoxes.h"
#include "platform/qt/QtEvents.h"
#include "settingsdlg/NetworkTableModel.h"
#include "settingsdlg/NetworkTexts.h"
#include "stats/frmStatistik.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QProgressBar>
#include <QTabWidget>
#include <QTableView>
#include <nlohmann/json.hpp>

#include <iostream>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

// Somebody who always agrees.
class YesMessageBoxes : public MessageBoxes {
  public:
    MessageAnswer Show(const std::string& text, const std::string&, MessageIcon, MessageButtons) override {
        std::cerr << text << "\n";
        return MessageAnswer::Yes;
    }
    void ShowWaiting(const std::string&, const std::string&) override {}
    void CloseWaiting() override {}
};

// Notes that a widget got an event.
class EventWatch : public QObject {
  public:
    EventWatch(QObject& watched, QEvent::Type type) : type_(type) { watched.installEventFilter(this); }

    bool Seen() const { return seen_; }
    void Forget() { seen_ = false; }
    /// Since the event.
    double Milliseconds() const { return since_.Milliseconds(); }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == type_) {
            seen_ = true;
            since_ = Stopwatch();
        }
        return false;
    }

  private:
    QEvent::Type type_;
    bool seen_ = false;
    Stopwatch since_;
};

template <typename Condition>
void Await(const Condition& condition) {
    const Stopwatch watch;
    constexpr double longest = 600'000;
    while (!condition()) {
        QCoreApplication::processEvents();
        if (watch.Milliseconds() > longest) throw std::runtime_error("the list is not painted");
    }
}

// The window over a data folder.
class WindowBench {
  public:
    explicit WindowBench(const fs::path& folder)
        : program_(folder, events_, boxes_),
          savePath_(QString::fromStdString((folder / "export").string())),
          window_({program_->settings, program_->language, program_->errors, boxes_, program_->statFile,
                   program_->aliases, program_->monthSums, program_->periodSums, program_.SystemTime(),
                   program_->locale, program_->recorder}),
          list_(Find<QTableView>("ListStats")),
          painted_(*list_.viewport(), QEvent::Paint) {
        window_.Plug([this](QWidget*, const QString&, const QString&) { return savePath_; });
    }

    /// Loads the file without a window, the measure of what rewriting it may take.
    double Load() {
        StatRecords records;
        const Stopwatch watch;
        program_->statFile.LoadStatFile(records, true);
        const double milliseconds = watch.Milliseconds();
        program_->monthSums.CalcStatsThisMonth(records, 0);
        return milliseconds;
    }

    /// From the end of the load until the list shows its rows.
    double Open() {
        const EventWatch loaded(Find<QProgressBar>("prgLoading"), QEvent::Hide);
        window_.Open();
        Await([&] { return loaded.Seen() && Rows() > 0; });
        painted_.Forget();
        Await([&] { return painted_.Seen(); });
        return loaded.Milliseconds();
    }

    template <typename Deed>
    double UntilPainted(const Deed& deed) {
        QCoreApplication::processEvents(); // what is still to do of the deed before
        painted_.Forget();
        const Stopwatch watch;
        deed();
        Await([&] { return painted_.Seen(); });
        return watch.Milliseconds();
    }

    double Choose(const char* combo, int index) {
        auto& box = Find<QComboBox>(combo);
        return UntilPainted([&] {
            box.setCurrentIndex(index);
            emit box.activated(index);
        });
    }

    double Sort(int column, Qt::SortOrder order) {
        return UntilPainted([&] { list_.horizontalHeader()->setSortIndicator(column, order); });
    }

    double Trigger(const char* action) {
        return UntilPainted([&] { Find<QAction>(action).trigger(); });
    }

    /// Of an action that changes nothing in the list.
    double TriggerAlone(const char* action) {
        const Stopwatch watch;
        Find<QAction>(action).trigger();
        return watch.Milliseconds();
    }

    void SelectRows(int first, int count) {
        list_.selectionModel()->select(
            {list_.model()->index(first, 0), list_.model()->index(first + count - 1, 0)},
            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        QCoreApplication::processEvents();
    }

    // The row that keeping the place takes longest for.
    void GoToLastRow() {
        list_.setCurrentIndex(list_.model()->index(Rows() - 1, 0));
        QCoreApplication::processEvents();
    }

    int Rows() const { return list_.model()->rowCount(); }

  private:
    template <typename T>
    T& Find(const char* name) {
        return *window_.findChild<T*>(QString::fromLatin1(name));
    }

    QtEvents events_;
    YesMessageBoxes boxes_;
    BenchProgram program_;
    QString savePath_;
    frmStatistik window_;
    QTableView& list_;
    EventWatch painted_;
};

constexpr int columnAlias = 0;
constexpr int columnLogIn = 1;
constexpr int columnInfo = 7;

// Everything but what moves text out of the window.
nlohmann::json Operate(const fs::path& folder) {
    WindowBench bench(folder);
    nlohmann::json result;
    result["load"] = bench.Load();
    result["visible"] = bench.Open();
    const int rows = bench.Rows();
    bench.GoToLastRow();
    result["unit"] = bench.Choose("cboKBMB", 1);
    result["filter"] = bench.Choose("cboFilter", 3);
    result["filter_off"] = bench.Choose("cboFilter", 0);
    bench.GoToLastRow();
    result["month_start"] = bench.Choose("cboMonthStartDay", 12);
    result["sort_date"] = bench.Sort(columnLogIn, Qt::AscendingOrder);
    result["sort_date_down"] = bench.Sort(columnLogIn, Qt::DescendingOrder);
    result["date_filter"] = bench.Choose("cboFilter", 3);
    bench.Choose("cboFilter", 0);
    result["sort_alias"] = bench.Sort(columnAlias, Qt::DescendingOrder);
    result["sort_note"] = bench.Sort(columnInfo, Qt::AscendingOrder);
    bench.Choose("cboFilter", 3);
    result["note_filter_off"] = bench.Choose("cboFilter", 0);
    result["sort_off"] = bench.Sort(-1, Qt::AscendingOrder);
    bench.SelectRows(rows / 2, 10);
    result["delete"] = bench.Trigger("mnuDelete");
    result["rows"] = rows;
    result["deleted"] = rows - bench.Rows();
    return result;
}

// Copying and exporting all rows of a file.
nlohmann::json Copy(const fs::path& folder) {
    WindowBench bench(folder);
    bench.Load();
    bench.Open();
    const double select = bench.Trigger("mnuSelectAll");
    const double copy = bench.TriggerAlone("mnuCopy");
    return {{"rows", bench.Rows()},
            {"select", select},
            {"copy", copy},
            {"bytes", QGuiApplication::clipboard()->text().toUtf8().size()},
            {"html", bench.TriggerAlone("mnuExportHTML")}};
}

// From the question to the system until the list of adapters is painted; a first table, then a fresh one.
nlohmann::json Adapters(std::size_t count) {
    QtEvents events;
    YesMessageBoxes boxes;
    const fs::path folder = fs::temp_directory_path();
    const BenchProgram program(folder, events, boxes);
    ManyAdapters network(count);
    NetworkTableModel model;
    QTableView list;
    list.setModel(&model);
    list.resize(700, 500);
    list.show();
    EventWatch painted(*list.viewport(), QEvent::Paint);
    nlohmann::json result;
    for (const char* name : {"first", "again"}) {
        QCoreApplication::processEvents();
        painted.Forget();
        const Stopwatch watch;
        model.SetTable(BuildAdapterTable(network, program->language, program->locale));
        Await([&] { return painted.Seen(); });
        result[name] = watch.Milliseconds();
    }
    result["columns"] = model.columnCount();
    return result;
}

constexpr const char* usage = "windowbench operate FOLDER (deletes records)\n"
                              "windowbench copy FOLDER\n"
                              "windowbench adapters COUNT\n";

nlohmann::json Run(const std::vector<std::string>& words) {
    if (words.size() == 2 && words[0] == "operate") return Operate(words[1]);
    if (words.size() == 2 && words[0] == "copy") return Copy(words[1]);
    if (words.size() == 2 && words[0] == "adapters") return Adapters(std::stoul(words[1]));
    throw std::invalid_argument(usage);
}

} // namespace
} // namespace korvalin

int main(int argc, char** argv) {
    try {
        const QApplication application(argc, argv);
        QApplication::setQuitOnLastWindowClosed(false);
        std::cout << korvalin::Run({argv + 1, argv + argc}) << "\n";
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
