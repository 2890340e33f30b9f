#include "fakes/CoreFixture.h"
#include "settingsdlg/ConnectionFields.h"
#include "settingsdlg/NetworkTexts.h"

using namespace korvalin;

namespace {

class NetworkTexts : public CoreFixture {
  protected:
    NetworkTexts() {
        folder.Write("program/Korvalin.lng", WholeTexts());
        EXPECT_TRUE(language.LoadLanguageChoices() && language.UseLanguage("GER"));
        network.Entries.emplace_back();
    }
    // The cell of the adapter in the row of that number.
    std::string Cell(std::size_t row) {
        return BuildAdapterTable(network, language, locale).Columns.at(1).Cells.at(row);
    }
};

// What the kernel tells is compared with iproute2's account; the rest is here.
TEST_F(NetworkTexts, EveryFigureHasItsFormAndNumbersWithoutANameKeepTheirBlank) {
    InterfaceEntry& entry = network.Entries[0];
    struct {
        std::size_t Row;
        std::function<void()> Change;
        const char* Shown;
    } const rows[] = {{2, [&] { entry.Type = 1; }, "1 Other"},
                      {2, [&] { entry.Type = 9; }, "9 TokenRing"},
                      {2, [&] { entry.Type = 15; }, "15 FDDI"},
                      {2, [&] { entry.Type = 23; }, "23 Point-to-Point"},
                      {2, [&] { entry.Type = 28; }, "28 Slip"},
                      {2, [&] { entry.Type = 131; }, "131 "},
                      {5, [] {}, ""},
                      {5,
                       [&] {
                           entry.PhysAddr = {{255, 0, 16, 1, 2, 3, 4, 5}, 20};
                       },
                       "255 0 16 1 2 3 4 5 "},
                      {6, [] {}, "FF 0 10 1 2 3 4 5 "},
                      {7, [&] { entry.AdminStatus = AdministrativeStatus::Testing; }, "3 Testing"},
                      {7, [&] { entry.AdminStatus = static_cast<AdministrativeStatus>(4); }, "4 "},
                      {8, [&] { entry.OperStatus = OperationalStatus::NonOperational; }, "0 Non-operational"},
                      {8, [&] { entry.OperStatus = OperationalStatus::Unreachable; }, "1 Unreachable"},
                      {8, [&] { entry.OperStatus = OperationalStatus::Connecting; }, "3 Connecting"},
                      {8, [&] { entry.OperStatus = OperationalStatus::Connected; }, "4 Connected"},
                      {8, [&] { entry.OperStatus = static_cast<OperationalStatus>(6); }, "6 "},
                      {9, [&] { entry.LastChange = UINT32_MAX; }, "4294967295"},
                      {15, [&] { entry.InUnknownProtos = 1005; }, "1,005"},
                      {16, [&] { entry.OutOctets = UINT64_MAX; }, "18,446,744,073,709,551,615"},
                      {18, [&] { entry.OutNUcastPkts = 1007; }, "1,007"},
                      {20, [&] { entry.OutErrors = 1009; }, "1,009"}};
    for (const auto& row : rows) {
        row.Change();
        EXPECT_EQ(Cell(row.Row), row.Shown);
    }
}

TEST_F(NetworkTexts, AddressesHaveSignedFieldsAndATableThatCannotBeReadItsCaptionsAlone) {
    network.Addresses = {{{192, 0, 2, 2}, 256, {255, 255, 255, 0}, {192, 0, 2, 255}, 65535, 65535, 32768}};
    network.Addresses6.resize(2);
    for (const bool unreadable : {false, true}) {
        network.IsUnreadable = unreadable;
        const TextTable addresses = BuildAddressTable(network);
        EXPECT_EQ(addresses.Columns.size(), 7U);
        EXPECT_EQ(addresses.RowCount(), unreadable ? 0U : 3U);
        const TextTable adapters = BuildAdapterTable(network, language, locale);
        EXPECT_EQ(adapters.Columns.size(), unreadable ? 1U : 2U);
        EXPECT_EQ(adapters.Columns[0].Caption, "Eigenschaft");
        if (unreadable) continue;
        EXPECT_EQ(addresses.Columns[5].Cells[0] + addresses.Columns[6].Cells[0], "-1-32768");
    }
}

TEST_F(NetworkTexts, TheConnectionIsDescribedInTheUsersWords) {
    using Fields = std::array<std::string, 6>;
    internet.State = {true, InternetConnectionLan | InternetRasInstalled};
    EXPECT_EQ(ConnectionFields(internet, language),
              (Fields{"Ja", "Nein", "Nein", "Ja", "Ja",
                      "Die Verbindung läuft über das lokale Netzwerk (LAN).\n"
                      "Der Einwähldienst (RAS) ist installiert."}));
    ASSERT_TRUE(language.UseLanguage("ENG"));
    internet.State = {false, InternetConnectionModem | InternetConnectionProxy};
    EXPECT_EQ(ConnectionFields(internet, language),
              (Fields{"No", "Yes", "Yes", "No", "No", "There is currently no internet connection."}));
}

} // namespace
