#pragma once

#include "platform/Signatures.h"

namespace korvalin {

/// Signatures checked by libsodium, which is loaded for the first one.
class SodiumSignatures : public Signatures {
  public:
    bool CanCheck() override;
    bool IsValid(std::string_view content, std::string_view signature, std::string_view publicKey) override;
    std::string Sha256(const std::filesystem::path& file) override;
};

} // namespace korvalin
