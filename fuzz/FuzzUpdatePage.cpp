// Pages of the update site as nobody would write them.
#include "Require.h"
#include "base/Text.h"
#include "inet/UpdatePage.h"
#include "inet/WebAddress.h"
#include "platform/linux/web/CurlAddress.h"

using namespace korvalin;

namespace {

void CheckLine(const std::string& line) {
    Require(CharacterCount(line) <= 100 && IsValidUtf8(line));
    for (const char c : line)
        Require(c < 0 || c >= ' ');
}

// An address is shown without its account, whatever it looks like, and leads where it led before.
void CheckAddress(const std::string& text) {
    static CurlAddressReader reader;
    const auto plain = reader.Read(text);
    if (!plain) return;
    const std::string secret = "p4ss";
    const auto withAccount = reader.Read(WithAccount(reader, text, "user", secret));
    Require(withAccount && withAccount->UserName == "user" && withAccount->Password == secret);
    Require(withAccount->Host == plain->Host && withAccount->WithoutAccount == plain->WithoutAccount);
    const auto again = reader.Read(plain->WithoutAccount);
    Require(again && again->UserName.empty() && again->Password.empty() && again->Host == plain->Host);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const UpdatePage page(text);
    CheckLine(page.NewestRelease());
    CheckLine(page.LanguageInformation("GER"));
    Require(page.NewestRelease().empty() || page.HasNewestRelease());
    for (const UpdatePage::Channel channel :
         {UpdatePage::Channel::Automatic, UpdatePage::Channel::OnDemand}) {
        const auto offer = page.Offer(channel);
        if (!offer) continue;
        const ProgramVersion& version = offer->Version;
        Require(page.IsUpgradable() && version.Major >= 0 && version.Minor >= 0 && version.Revision >= 0);
        Require(!IsNewer(version, version) && text.find(offer->FileName) != std::string::npos);
        Require(EndsWithNoCase(offer->FileName, ".exe"));
    }
    CheckAddress(text);
    return 0;
}
