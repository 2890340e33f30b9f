#include "platform/linux/web/CurlAddress.h"

#include <memory>

namespace korvalin {

CurlAddress::CurlAddress(const CurlLibrary& library, const std::string& address) : WithoutAccount(address) {
    const std::unique_ptr<CURLU, decltype(library.UrlCleanUp)> url(library.UrlInit(), library.UrlCleanUp);
    if (library.UrlSet(url.get(), CURLUPART_URL, address.c_str(), 0) != CURLUE_OK) return;
    const auto part = [&](CURLUPart which, unsigned flags) {
        char* text = nullptr;
        if (library.UrlGet(url.get(), which, &text, flags) != CURLUE_OK) return std::string();
        const std::unique_ptr<char, decltype(library.Free)> owner(text, library.Free);
        return std::string(text);
    };
    UserName = part(CURLUPART_USER, CURLU_URLDECODE);
    Password = part(CURLUPART_PASSWORD, CURLU_URLDECODE);
    library.UrlSet(url.get(), CURLUPART_USER, nullptr, 0);
    library.UrlSet(url.get(), CURLUPART_PASSWORD, nullptr, 0);
    WithoutAccount = part(CURLUPART_URL, 0);
}

} // namespace korvalin
