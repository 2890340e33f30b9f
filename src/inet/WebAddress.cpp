#include "inet/WebAddress.h"

#include "base/Text.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr std::size_t longestName = 100;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || IsDigit(c);
}

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

// Where the host, or an account before it, begins; npos for an address without one.
std::size_t AuthorityOf(std::string_view address) {
    const std::size_t slashes = address.find("//");
    return slashes == std::string_view::npos ? slashes : slashes + 2;
}

} // namespace

std::string WithAccount(std::string_view address, std::string_view user, std::string_view password) {
    const std::size_t authority = AuthorityOf(address);
    if (authority == std::string_view::npos || user.empty()) return std::string(address);
    constexpr std::string_view unreserved = "-._~";
    return std::string(address.substr(0, authority)) + PercentEncode(user, unreserved) + ":" +
           PercentEncode(password, unreserved) + "@" + std::string(address.substr(authority));
}

std::string WithoutAccount(std::string_view address) {
    const std::size_t authority = AuthorityOf(address);
    if (authority == std::string_view::npos) return std::string(address);
    const std::string_view host =
        address.substr(authority, address.find_first_of("/?#", authority) - authority);
    const std::size_t at = host.rfind('@');
    if (at == std::string_view::npos) return std::string(address);
    return std::string(address.substr(0, authority)) + std::string(address.substr(authority + at + 1));
}

bool IsLoopbackAddress(std::string_view address) {
    const bool plain = StartsWithNoCase(address, "http://");
    if (!plain && !StartsWithNoCase(address, "https://")) return false;
    address.remove_prefix(AuthorityOf(address));
    for (const std::string_view host : {"127.0.0.1", "[::1]", "localhost"}) {
        if (!StartsWithNoCase(address, host)) continue;
        address.remove_prefix(host.size());
        if (address.starts_with(':')) {
            address.remove_prefix(1);
            address.remove_prefix(static_cast<std::size_t>(
                std::find_if_not(address.begin(), address.end(), IsDigit) - address.begin()));
        }
        return address.empty() || address.starts_with('/');
    }
    return false;
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
