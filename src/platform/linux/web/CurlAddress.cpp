#include "platform/linux/web/CurlAddress.h"

#include <memory>

namespace korvalin {
namespace {

/// An address as libcurl keeps it.
class Url {
  public:
    explicit Url(const CurlLibrary& library)
        : library_(library), url_(library.UrlInit(), library.UrlCleanUp) {}

    /// False when libcurl does not take the value; nullptr removes a part.
    bool Set(CURLUPart part, const char* value) {
        return library_.UrlSet(url_.get(), part, value, 0) == CURLUE_OK;
    }

    /// Puts the part into `value`, which stays empty where there is none; false for one that cannot be
    /// decoded.
    bool Get(CURLUPart part, std::string& value, unsigned flags = 0) const {
        char* text = nullptr;
        const CURLUcode result = library_.UrlGet(url_.get(), part, &text, flags);
        const std::unique_ptr<char, decltype(library_.Free)> owner(text, library_.Free);
        if (text != nullptr) value = text;
        return result == CURLUE_OK || result == CURLUE_NO_USER || result == CURLUE_NO_PASSWORD ||
               result == CURLUE_NO_HOST;
    }

  private:
    const CurlLibrary& library_;
    std::unique_ptr<CURLU, decltype(CurlLibrary::UrlCleanUp)> url_;
};

} // namespace

std::optional<AddressParts> ReadAddress(const CurlLibrary& library, const std::string& address) {
    Url url(library);
    AddressParts parts;
    // The host is read from what is connected to: a number that was percent-encoded is one only then.
    const bool isRead = url.Set(CURLUPART_URL, address.c_str()) && url.Get(CURLUPART_SCHEME, parts.Scheme) &&
                        url.Get(CURLUPART_USER, parts.UserName, CURLU_URLDECODE) &&
                        url.Get(CURLUPART_PASSWORD, parts.Password, CURLU_URLDECODE) &&
                        url.Set(CURLUPART_USER, nullptr) && url.Set(CURLUPART_PASSWORD, nullptr) &&
                        url.Get(CURLUPART_URL, parts.WithoutAccount) &&
                        url.Set(CURLUPART_URL, parts.WithoutAccount.c_str()) &&
                        url.Get(CURLUPART_URL, parts.WithoutAccount) && url.Get(CURLUPART_HOST, parts.Host);
    return isRead ? std::optional(parts) : std::nullopt;
}

std::optional<AddressParts> CurlAddressReader::Read(const std::string& address) {
    const CurlLibrary* library = CurlLibrary::Get();
    return library != nullptr ? ReadAddress(*library, address) : std::nullopt;
}

} // namespace korvalin
