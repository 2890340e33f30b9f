#pragma once

#include <string_view>

namespace korvalin {

/// Signatures of the maker (Ed25519).
class Signatures {
  public:
    virtual ~Signatures() = default;

    /// Whether the signature (64 bytes) of the content is that of the public key (32 bytes). False also where
    /// signatures cannot be checked.
    [[nodiscard]] virtual bool IsValid(std::string_view content, std::string_view signature,
                                       std::string_view publicKey) = 0;
};

} // namespace korvalin
