#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace korvalin {

/// Signatures of the maker (Ed25519) and the hashes that are signed.
class Signatures {
  public:
    virtual ~Signatures() = default;

    /// Whether signatures can be checked at all.
    [[nodiscard]] virtual bool CanCheck() = 0;

    /// Whether the signature (64 bytes) of the content is that of the public key (32 bytes). False also where
    /// signatures cannot be checked.
    [[nodiscard]] virtual bool IsValid(std::string_view content, std::string_view signature,
                                       std::string_view publicKey) = 0;

    /// SHA-256 of a file as hexadecimal digits in lower case; empty when it cannot be read.
    [[nodiscard]] virtual std::string Sha256(const std::filesystem::path& file) = 0;
};

} // namespace korvalin
