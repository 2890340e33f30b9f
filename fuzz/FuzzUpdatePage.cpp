// Pages of the update site as nobody would write them.
#include "Require.h"
#include "base/Text.h"
#include "inet/UpdatePage.h"
#include "inet/WebAddress.h"

using namespace korvalin;

namespace {

void CheckLine(const std::string& line) {
    Require(CharacterCount(line) <= 100 && IsValidUtf8(line));
    for (const char c : line)
        Require(c < 0 || c >= ' ');
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
    // An address is shown without its account, whatever it looks like.
    const std::string secret = "p4ss";
    const std::string address = WithAccount(text, "user", secret);
    Require(address == text || WithoutAccount(address).find(secret) == std::string::npos ||
            text.find(secret) != std::string::npos);
    static_cast<void>(IsLoopbackAddress(text));
    return 0;
}
