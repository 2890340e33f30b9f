#include "inet/UpdateFixture.h"
#include "inet/WebFixture.h"
#include "platform/linux/web/SodiumSignatures.h"

#include <fmt/format.h>

#include <sodium.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

/// The whole check over real transfers.
class UpdateOverHttp : public UpdateFixture<WebFixture>, public testing::WithParamInterface<Transport> {
  protected:
    UpdateOverHttp() {
        Use(GetParam());
        internet.State = {true, InternetConnectionLan};
        fs::create_directories(server.Folder / "update");
        Serve(server.Http() + "update/");
    }
    void Serve(const std::string& address, const std::string& publicKey = "") {
        UseSite(address, realFiles, signatures_, publicKey);
    }
    void Put(const std::string& name, const std::string& body) {
        server.Folder.Write("update/" + name, body);
    }
    void PutUpdate(const std::string& version = "2.4.1") {
        Put("update_general.html", "<p>Newest Release: 2.4.1 of 1 May</p>Upgradable Ax" + version +
                                       "-new.exe Vx" + version + "-new.exe");
        Put("new.exe", program);
        Put("Korvalin.lng", newTexts);
    }

    const std::string program = std::string(3'000'000, 'n');

  private:
    SodiumSignatures signatures_;
};

INSTANTIATE_TEST_SUITE_P(Both, UpdateOverHttp, testing::Values(Transport::Loop, Transport::Control),
                         [](const auto& given) {
                             return given.param == Transport::Loop ? "Loop" : "Control";
                         });

TEST_P(UpdateOverHttp, StartsOnlyWhatTheMakerHasSigned) {
    ASSERT_GE(sodium_init(), 0);
    std::string publicKey(crypto_sign_PUBLICKEYBYTES, 0);
    std::string secretKey(crypto_sign_SECRETKEYBYTES, 0);
    const auto bytes = [](std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); };
    crypto_sign_keypair(bytes(publicKey), bytes(secretKey));
    const auto sign = [&](std::string content) {
        std::string signature(crypto_sign_BYTES, 0);
        crypto_sign_detached(bytes(signature), nullptr, bytes(content), content.size(), bytes(secretKey));
        return signature;
    };
    Serve(server.Http() + "update/", publicKey);
    PutUpdate();
    const auto hex = [](const std::string& text) {
        std::string digits;
        for (const char c : text)
            digits += fmt::format("{:02x}", static_cast<unsigned char>(c));
        return digits;
    };
    const auto file = [&](const std::string& name, std::string content) {
        std::string hash(crypto_hash_sha256_BYTES, 0);
        crypto_hash_sha256(bytes(hash), bytes(content), content.size());
        return fmt::format("file {} {} {}\n", content.size(), hex(hash), name);
    };
    const std::string texts = "Korvalin update 1\nversion 2.4.1\nexpires 2024-04-01\n" +
                              file("new.exe", program) + file("Korvalin.lng", newTexts);
    const std::pair<std::string, int> rows[] = {{"", 3},
                                                {texts, 3},
                                                {"signature " + std::string(128, '7') + "\n" + texts, 3},
                                                {"signature " + hex(sign(texts)) + "\n" + texts + "\n", 3},
                                                {"signature " + hex(sign(texts)).substr(2) + "\n" + texts, 3},
                                                {"signature " + hex(sign(texts)) + "\n" + texts, 9}};
    for (const auto& [manifest, result] : rows) {
        Put("update.manifest", manifest);
        settings.SetReg("UpdateNext", Date(0));
        EXPECT_EQ(Automatic(), result);
        EXPECT_EQ(NewFiles().size(), result == 9 ? 3U : 0U);
    }
}

} // namespace
