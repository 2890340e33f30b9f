#pragma once

#include "platform/AddressReader.h"
#include "platform/linux/web/CurlLibrary.h"

namespace korvalin {

/// Takes an address apart; nullopt for what is none.
std::optional<AddressParts> ReadAddress(const CurlLibrary& library, const std::string& address);

/// AddressReader on libcurl, which is loaded for the first address.
class CurlAddressReader : public AddressReader {
  public:
    std::optional<AddressParts> Read(const std::string& address) override;
};

} // namespace korvalin
