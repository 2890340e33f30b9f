#include "inet/UpdateFixture.h"
#include "platform/linux/web/SodiumSignatures.h"

#include <fmt/format.h>

#include <sodium.h>

using namespace korvalin;

namespace {

using SignedUpdate = UpdateFixture;

std::string Hex(const std::string& bytes) {
    std::string digits;
    for (const char byte : bytes)
        digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
    return digits;
}

TEST_F(SignedUpdate, IsStartedOnlyWithTheMakersRealSignature) {
    ASSERT_GE(sodium_init(), 0);
    std::string publicKey(crypto_sign_PUBLICKEYBYTES, 0);
    std::string secretKey(crypto_sign_SECRETKEYBYTES, 0);
    const auto bytes = [](std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); };
    crypto_sign_keypair(bytes(publicKey), bytes(secretKey));
    const auto file = [&](const std::string& name, std::string content) {
        std::string hash(crypto_hash_sha256_BYTES, 0);
        crypto_hash_sha256(bytes(hash), bytes(content), content.size());
        return fmt::format("file {} {} {}\n", content.size(), Hex(hash), name);
    };
    std::string texts =
        "Korvalin update 1\nexpires 2024-04-01\nautomatic 9.4.1 setup.exe\non-demand 9.4.1 setup.exe\n" +
        file("setup.exe", std::string(ShortestProgram, 'n')) + file("Korvalin.lng", newTexts);
    std::string signature(crypto_sign_BYTES, 0);
    crypto_sign_detached(bytes(signature), nullptr, bytes(texts), texts.size(), bytes(secretKey));
    SodiumSignatures makers;
    UseSite(siteAddress, Hex(publicKey), makers);
    internet.State = {true, InternetConnectionLan};
    PutUpdate("Newest Release: 9.4.1<Upgradable Ax9.4.1-setup.exe");
    const std::pair<std::string, int> rows[] = {{"", 3},
                                                {texts, 3},
                                                {"signature " + std::string(128, '7') + "\n" + texts, 3},
                                                {"signature " + Hex(signature) + "\n" + texts + "\n", 3},
                                                {"signature " + Hex(signature).substr(2) + "\n" + texts, 3},
                                                {"signature " + Hex(signature) + "\n" + texts, 9}};
    for (const auto& [manifest, result] : rows) {
        Put("update.manifest", manifest);
        settings.SetReg("UpdateNext", Date(0));
        EXPECT_EQ(Automatic(), result);
        EXPECT_EQ(NewFiles().size(), result == 9 ? 3U : 0U);
    }
}

} // namespace
