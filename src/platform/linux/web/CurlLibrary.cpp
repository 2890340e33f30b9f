#include "platform/linux/web/CurlLibrary.h"

namespace korvalin {

CurlLibrary::CurlLibrary() : library_(KORVALIN_CURL_LIBRARY) {
    decltype(&::curl_global_init) globalInit = nullptr;
    loaded_ =
        library_.Find("curl_global_init", globalInit) && library_.Find("curl_easy_init", EasyInit) &&
        library_.Find("curl_easy_setopt", EasySetOption) && library_.Find("curl_easy_getinfo", EasyGetInfo) &&
        library_.Find("curl_easy_strerror", EasyErrorText) &&
        library_.Find("curl_easy_cleanup", EasyCleanUp) && library_.Find("curl_multi_init", MultiInit) &&
        library_.Find("curl_url", UrlInit) && library_.Find("curl_url_get", UrlGet) &&
        library_.Find("curl_url_set", UrlSet) && library_.Find("curl_url_cleanup", UrlCleanUp) &&
        library_.Find("curl_free", Free) && library_.Find("curl_multi_setopt", MultiSetOption) &&
        library_.Find("curl_multi_add_handle", MultiAdd) &&
        library_.Find("curl_multi_remove_handle", MultiRemove) &&
        library_.Find("curl_multi_perform", MultiPerform) && library_.Find("curl_multi_poll", MultiPoll) &&
        library_.Find("curl_multi_socket_action", MultiSocketAction) &&
        library_.Find("curl_multi_info_read", MultiInfoRead) &&
        library_.Find("curl_multi_cleanup", MultiCleanUp) && globalInit(CURL_GLOBAL_DEFAULT) == CURLE_OK;
}

const CurlLibrary* CurlLibrary::Get() {
    static const CurlLibrary library;
    return library.loaded_ ? &library : nullptr;
}

} // namespace korvalin
