#include "fakes/CoreFixture.h"
#include "settingsdlg/ConnectionFields.h"
#include "settingsdlg/NetworkTexts.h"

using namespace korvalin;

namespace {

class NetworkTexts : public CoreFixture {
  protected:
    NetworkTexts() {
        std::filesystem::copy_file(KORVALIN_RESOURCES "/lang/Korvalin.lng", programFolder / "Korvalin.lng");
        EXPECT_TRUE(language.LoadLanguageChoices() && language.UseLanguage("GER"));
        locale.GroupingMark = ".";
    }
    InterfaceEntry& Adapter(const std::string& description) {
        InterfaceEntry entry;
        entry.Description = description;
        network.Entries.push_back(entry);
        return network.Entries.back();
    }
    // The cell of the first adapter whose row has that caption.
    std::string Cell(const std::string& caption) {
        const TextTable table = BuildAdapterTable(network, language, locale);
        const Lines& captions = table.Columns.front().Cells;
        const auto row = std::find(captions.begin(), captions.end(), caption) - captions.begin();
        return table.Columns.at(1).Cells.at(static_cast<std::size_t>(row));
    }
};

TEST_F(NetworkTexts, EveryFieldOfAnAdapterStandsBesideItsCaption) {
    InterfaceEntry& entry = Adapter("wire0");
    entry.Index = 1234;
    entry.Type = IfTypeEthernet;
    entry.Mtu = 65536;
    entry.Speed = 400'000'000'000;
    entry.PhysAddr = {{0x00, 0x0A, 0x95, 0x9D, 0x68, 0x16}, 6};
    entry.AdminStatus = AdministrativeStatus::Enabled;
    entry.OperStatus = OperationalStatus::Operational;
    entry.LastChange = 4'294'967'295;
    entry.InOctets = 3'000'000'000;
    entry.InUcastPkts = 1001;
    entry.InNUcastPkts = 1002;
    entry.InDiscards = 1003;
    entry.InErrors = 1004;
    entry.InUnknownProtos = 1005;
    entry.OutOctets = 18'446'744'073'709'551'615U;
    entry.OutUcastPkts = 1006;
    entry.OutNUcastPkts = 1007;
    entry.OutDiscards = 1008;
    entry.OutErrors = 1009;
    entry.OutQLen = 1010;
    Adapter("wire1");
    const TextTable table = BuildAdapterTable(network, language, locale);
    ASSERT_EQ(table.Columns.size(), 3U);
    EXPECT_EQ(table.Columns[0].Caption, "Eigenschaft");
    EXPECT_EQ(table.Columns[1].Caption, "Adapter 1");
    EXPECT_EQ(table.Columns[2].Caption, "Adapter 2");
    EXPECT_EQ(table.Columns[2].Cells[0], "wire1");
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"Beschreibung", "wire0"},
        {"interface index", "1234"},
        {"interface type", "6 Ethernet"},
        {"Maximum Transmission Unit", "65536"},
        {"interface speed (bps)", "400.000.000.000"},
        {"physical address (decimal)", "0 10 149 157 104 22 "},
        {"physical address (hex)", "0 A 95 9D 68 16 "},
        {"admin enabled or disabled", "1 Enabled"},
        {"interface operational status", "5 Operational"},
        {"last time op status changed", "4294967295"},
        {"data received (octets)", "3.000.000.000"},
        {"packets received (unicast)", "1.001"},
        {"packets received (non-unicast)", "1.002"},
        {"packets discarded", "1.003"},
        {"discarded with errors", "1.004"},
        {"discarded, unknown protocol", "1.005"},
        {"data sent (octets)", "18.446.744.073.709.551.615"},
        {"packets sent (unicast)", "1.006"},
        {"packets sent (non-unicast)", "1.007"},
        {"packets discarded, no errors", "1.008"},
        {"packets discarded with errors", "1.009"},
        {"output queue length", "1.010"}};
    ASSERT_EQ(table.RowCount(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(table.Columns[0].Cells[i], expected[i].first);
        EXPECT_EQ(table.Columns[1].Cells[i], expected[i].second) << expected[i].first;
    }
}

TEST_F(NetworkTexts, NumbersWithoutANameKeepTheirBlank) {
    InterfaceEntry& entry = Adapter("wire0");
    for (const auto& [type, text] : std::map<std::uint32_t, std::string>{{1, "1 Other"},
                                                                         {9, "9 TokenRing"},
                                                                         {15, "15 FDDI"},
                                                                         {23, "23 Point-to-Point"},
                                                                         {24, "24 Loopback"},
                                                                         {28, "28 Slip"},
                                                                         {71, "71 "},
                                                                         {131, "131 "}}) {
        entry.Type = type;
        EXPECT_EQ(Cell("interface type"), text);
    }
    for (const auto& [status, text] : std::map<std::uint32_t, std::string>{
             {0, "0 "}, {1, "1 Enabled"}, {2, "2 Disabled"}, {3, "3 Testing"}, {4, "4 "}}) {
        entry.AdminStatus = static_cast<AdministrativeStatus>(status);
        EXPECT_EQ(Cell("admin enabled or disabled"), text);
    }
    for (const auto& [status, text] : std::map<std::uint32_t, std::string>{{0, "0 Non-operational"},
                                                                           {1, "1 Unreachable"},
                                                                           {2, "2 Disconnected"},
                                                                           {3, "3 Connecting"},
                                                                           {4, "4 Connected"},
                                                                           {6, "6 "}}) {
        entry.OperStatus = static_cast<OperationalStatus>(status);
        EXPECT_EQ(Cell("interface operational status"), text);
    }
}

TEST_F(NetworkTexts, AnAdapterMayHaveNoAddressOrTheLongestOne) {
    InterfaceEntry& entry = Adapter("wire0");
    EXPECT_EQ(Cell("physical address (hex)"), "");
    entry.PhysAddr = {{255, 0, 16, 1, 2, 3, 4, 5}, 8};
    EXPECT_EQ(Cell("physical address (hex)"), "FF 0 10 1 2 3 4 5 ");
    entry.PhysAddr.Length = 20; // more than there can be
    EXPECT_EQ(Cell("physical address (decimal)"), "255 0 16 1 2 3 4 5 ");
}

TEST_F(NetworkTexts, AddressesOfBothVersionsShareOneList) {
    network.Addresses = {{{127, 0, 0, 1}, 1, {255, 0, 0, 0}, {}, 65535, 0, 1},
                         {{192, 0, 2, 2}, 256, {255, 255, 255, 0}, {192, 0, 2, 255}, 65535, 65535, 32768}};
    network.Addresses6 = {{{}, "2001:db8::2", 3, 64}};
    const TextTable table = BuildAddressTable(network);
    const std::vector<std::pair<std::string, Lines>> expected = {
        {"Interface Index", {"1", "256", "3"}},
        {"IP Address", {"127.0.0.1", "192.0.2.2", "2001:db8::2"}},
        {"Subnet Mask", {"255.0.0.0", "255.255.255.0", "/64"}},
        {"Broadcast Addr", {"0.0.0.0", "192.0.2.255", ""}},
        {"Reassembly", {"65535", "65535", ""}},
        {"unused1", {"0", "-1", ""}},
        {"unused2", {"1", "-32768", ""}}};
    ASSERT_EQ(table.Columns.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(table.Columns[i].Caption, expected[i].first);
        EXPECT_EQ(table.Columns[i].Cells, expected[i].second) << expected[i].first;
    }
}

TEST_F(NetworkTexts, ATableThatCannotBeReadHasItsCaptionsAlone) {
    Adapter("wire0");
    network.Addresses.resize(2);
    network.Addresses6.resize(2);
    network.IsUnreadable = true;
    const TextTable adapters = BuildAdapterTable(network, language, locale);
    EXPECT_EQ(adapters.Columns.size(), 1U);
    EXPECT_EQ(adapters.RowCount(), 22U);
    const TextTable addresses = BuildAddressTable(network);
    EXPECT_EQ(addresses.Columns.size(), 7U);
    EXPECT_EQ(addresses.RowCount(), 0U);
    EXPECT_EQ(Log(), "");
    network.IsUnreadable = false;
    EXPECT_EQ(BuildAddressTable(network).RowCount(), 4U);
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
