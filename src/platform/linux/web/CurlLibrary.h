#pragma once

#include "platform/linux/web/SharedLibrary.h"

#include <curl/curl.h>

namespace korvalin {

/// libcurl, loaded when the first file is fetched: with all that it brings along it would take longer to load
/// than the rest of the program.
class CurlLibrary {
  public:
    /// nullptr where it is not installed.
    static const CurlLibrary* Get();

    decltype(&::curl_easy_init) EasyInit = nullptr;
    decltype(&::curl_easy_setopt) EasySetOption = nullptr;
    decltype(&::curl_easy_getinfo) EasyGetInfo = nullptr;
    decltype(&::curl_easy_strerror) EasyErrorText = nullptr;
    decltype(&::curl_easy_cleanup) EasyCleanUp = nullptr;
    decltype(&::curl_url) UrlInit = nullptr;
    decltype(&::curl_url_get) UrlGet = nullptr;
    decltype(&::curl_url_set) UrlSet = nullptr;
    decltype(&::curl_url_cleanup) UrlCleanUp = nullptr;
    decltype(&::curl_free) Free = nullptr;
    decltype(&::curl_multi_init) MultiInit = nullptr;
    decltype(&::curl_multi_setopt) MultiSetOption = nullptr;
    decltype(&::curl_multi_add_handle) MultiAdd = nullptr;
    decltype(&::curl_multi_remove_handle) MultiRemove = nullptr;
    decltype(&::curl_multi_perform) MultiPerform = nullptr;
    decltype(&::curl_multi_poll) MultiPoll = nullptr;
    decltype(&::curl_multi_socket_action) MultiSocketAction = nullptr;
    decltype(&::curl_multi_info_read) MultiInfoRead = nullptr;
    decltype(&::curl_multi_cleanup) MultiCleanUp = nullptr;

  private:
    CurlLibrary();

    SharedLibrary library_;
    bool loaded_ = false;
};

} // namespace korvalin
