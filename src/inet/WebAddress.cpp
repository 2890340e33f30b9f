#include "inet/WebAddress.h"

#include "base/Characters.h"
#include "base/Text.h"
#include "platform/AddressReader.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr std::size_t longestName = 100;

// `alsoPlain`: characters that stay as they are beside letters and digits.
std::string PercentEncode(std::string_view text, std::string_view alsoPlain) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        if (IsLetterOrDigit(c) || alsoPlain.find(c) != std::string_view::npos) {
            encoded += c;
        } else {
            const auto code = static_cast<unsigned char>(c);
            encoded += {'%', digits[code / 16], digits[code % 16]};
        }
    }
    return encoded;
}

} // namespace

std::string WithAccount(AddressReader& reader, const std::string& address, std::string_view user,
                        std::string_view password) {
    constexpr std::string_view unreserved = "-._~";
    const std::optional<AddressParts> parts = user.empty() ? std::nullopt : reader.Read(address);
    if (!parts) return address;
    const std::string start = parts->Scheme + "://";
    return start + PercentEncode(user, unreserved) + ":" + PercentEncode(password, unreserved) + "@" +
           parts->WithoutAccount.substr(start.size());
}

std::string WithoutAccount(AddressReader& reader, const std::string& address) {
    const std::optional<AddressParts> parts = reader.Read(address);
    return parts ? parts->WithoutAccount : std::string();
}

bool IsLoopbackAddress(AddressReader& reader, const std::string& address) {
    const std::optional<AddressParts> parts = reader.Read(address);
    if (!parts || !parts->UserName.empty() || !parts->Password.empty()) return false;
    if (parts->Scheme != "http" && parts->Scheme != "https") return false;
    return parts->Host == "127.0.0.1" || parts->Host == "[::1]" || EqualsNoCase(parts->Host, "localhost");
}

std::string FileAddress(std::string_view path) {
    return "file://" + PercentEncode(path, "/-._~");
}

bool IsPlainFileName(std::string_view name) {
    constexpr std::string_view marks = "._-";
    return !name.empty() && name.size() <= longestName && IsLetterOrDigit(name.front()) &&
           std::all_of(name.begin(), name.end(),
                       [&](char c) { return IsLetterOrDigit(c) || marks.find(c) != std::string_view::npos; });
}

} // namespace korvalin
