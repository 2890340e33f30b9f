#include "platform/linux/web/SodiumSignatures.h"

#include "platform/linux/web/SharedLibrary.h"

#include <sodium.h>

namespace korvalin {
namespace {

const unsigned char* Bytes(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

} // namespace

bool SodiumSignatures::IsValid(std::string_view content, std::string_view signature,
                               std::string_view publicKey) {
    if (signature.size() != crypto_sign_BYTES || publicKey.size() != crypto_sign_PUBLICKEYBYTES) return false;
    const SharedLibrary library("libsodium.so.23");
    decltype(&::sodium_init) init = nullptr;
    decltype(&::crypto_sign_verify_detached) verify = nullptr;
    return library.Find("sodium_init", init) && library.Find("crypto_sign_verify_detached", verify) &&
           init() >= 0 && verify(Bytes(signature), Bytes(content), content.size(), Bytes(publicKey)) == 0;
}

} // namespace korvalin
