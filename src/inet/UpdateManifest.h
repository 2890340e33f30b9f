#pragma once

#include "base/Date.h"
#include "inet/UpdatePage.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

class Signatures;

/// What the maker signs: until when this is said, the program that each way of checking gets, and the files
/// that belong to them.
///
///     signature (128 hexadecimal digits, over everything behind this line)
///     Korvalin update 1
///     expires 2027-06-01
///     automatic 2.4.0 setup240.exe
///     on-demand 2.4.1 setup241.exe
///     file (bytes) (SHA-256, hexadecimal) setup241.exe
struct UpdateManifest {
    struct File {
        std::string Name;
        std::uintmax_t Bytes = 0;
        std::string Sha256; ///< hexadecimal, in lower case
    };
    Date Expires = 0; ///< the first day on which it is no longer believed
    UpdateOffer Automatic;
    UpdateOffer OnDemand;
    std::vector<File> Files;

    const UpdateOffer& Of(UpdatePage::Channel channel) const {
        return channel == UpdatePage::Channel::Automatic ? Automatic : OnDemand;
    }

    /// nullptr for a file that belongs to no version.
    const File* Find(std::string_view name) const;
};

/// nullopt for what the key has not signed and for what is signed but cannot be read.
std::optional<UpdateManifest> ReadManifest(std::string_view text, Signatures& signatures,
                                           std::string_view publicKey);

/// The bytes that hexadecimal digits stand for; nullopt when they are none.
std::optional<std::string> BytesOfHex(std::string_view digits);

} // namespace korvalin
