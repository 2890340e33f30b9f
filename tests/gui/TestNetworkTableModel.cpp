#include "fakes/CoreFixture.h"
#include "settingsdlg/NetworkTableModel.h"
#include "settingsdlg/NetworkTexts.h"

using namespace korvalin;

namespace {

class NetworkTableView : public CoreFixture {
  protected:
    NetworkTableView() { list.setModel(&model); }

    void ShowAdapters(std::size_t count) {
        network.Entries.resize(count);
        for (std::size_t i = 0; i < count; ++i)
            network.Entries[i].Description = "größe" + std::to_string(i + 1);
        model.SetTable(BuildAdapterTable(network, language, locale));
    }
    QString Header(int column) {
        return model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    }

    NetworkTableModel model;
    QTableView list;
};

TEST_F(NetworkTableView, ShowsAColumnForEachAdapterAndReplacesThem) {
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(list.horizontalHeader()->count(), 0);
    ShowAdapters(1000);
    EXPECT_EQ(list.horizontalHeader()->count(), 1001);
    EXPECT_EQ(list.verticalHeader()->count(), 22);
    EXPECT_EQ(Header(1000), QStringLiteral("Adapter 1000"));
    EXPECT_EQ(model.index(0, 1000).data().toString(), QStringLiteral("größe1000"));
    EXPECT_EQ(model.index(1, 0).data().toString(), QStringLiteral("interface index"));
    ShowAdapters(2);
    EXPECT_EQ(list.horizontalHeader()->count(), 3);
    EXPECT_EQ(Header(2), QStringLiteral("Adapter 2"));
    EXPECT_EQ(model.Table().Columns[2].Cells[0], "größe2");
}

} // namespace
