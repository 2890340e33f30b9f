#include "platform/linux/web/SodiumSignatures.h"

#include "platform/linux/web/SharedLibrary.h"

#include <fmt/format.h>

#include <array>
#include <fstream>
#include <sodium.h>

namespace korvalin {
namespace {

const unsigned char* Bytes(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

/// The functions that are used of the library.
struct Sodium {
    SharedLibrary Library{KORVALIN_SODIUM_LIBRARY};
    decltype(&::sodium_init) Init = nullptr;
    decltype(&::crypto_sign_verify_detached) Verify = nullptr;
    decltype(&::crypto_hash_sha256_init) HashInit = nullptr;
    decltype(&::crypto_hash_sha256_update) HashUpdate = nullptr;
    decltype(&::crypto_hash_sha256_final) HashFinal = nullptr;

    bool Load() {
        return Library.Find("sodium_init", Init) && Library.Find("crypto_sign_verify_detached", Verify) &&
               Library.Find("crypto_hash_sha256_init", HashInit) &&
               Library.Find("crypto_hash_sha256_update", HashUpdate) &&
               Library.Find("crypto_hash_sha256_final", HashFinal) && Init() >= 0;
    }
};

} // namespace

bool SodiumSignatures::CanCheck() {
    return Sodium().Load();
}

bool SodiumSignatures::IsValid(std::string_view content, std::string_view signature,
                               std::string_view publicKey) {
    if (signature.size() != crypto_sign_BYTES || publicKey.size() != crypto_sign_PUBLICKEYBYTES) return false;
    Sodium sodium;
    return sodium.Load() &&
           sodium.Verify(Bytes(signature), Bytes(content), content.size(), Bytes(publicKey)) == 0;
}

std::string SodiumSignatures::Sha256(const std::filesystem::path& file) {
    Sodium sodium;
    std::ifstream stream(file, std::ios::binary);
    if (!stream || !sodium.Load()) return {};
    crypto_hash_sha256_state state;
    sodium.HashInit(&state);
    std::array<char, 65536> block;
    while (stream.read(block.data(), block.size()) || stream.gcount() > 0) {
        const auto read = static_cast<std::size_t>(stream.gcount());
        sodium.HashUpdate(&state, Bytes({block.data(), read}), read);
    }
    if (stream.bad()) return {};
    std::array<unsigned char, crypto_hash_sha256_BYTES> hash;
    sodium.HashFinal(&state, hash.data());
    return fmt::format("{:02x}", fmt::join(hash, ""));
}

} // namespace korvalin
