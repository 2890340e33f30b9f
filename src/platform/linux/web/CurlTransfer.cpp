#include "platform/linux/web/CurlTransfer.h"

#include "base/Text.h"
#include "platform/linux/web/CurlAddress.h"

#include <algorithm>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korvalin {
namespace {

constexpr long mostRedirects = 10;
constexpr std::size_t mostHeaderBytes = 256UL * 1024; // of all answers of a transfer, redirects included
constexpr long tooSlow = 100;                         // bytes a second

bool IsLoopback(const sockaddr& address) {
    constexpr std::uint32_t loopbackNet = 127;
    if (address.sa_family == AF_INET)
        return ntohl(reinterpret_cast<const sockaddr_in&>(address).sin_addr.s_addr) >> 24 == loopbackNet;
    if (address.sa_family == AF_INET6)
        return IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6&>(address).sin6_addr) != 0;
    return false;
}

} // namespace

CurlTransfer::CurlTransfer(const CurlLibrary& library, const HttpRequest& request, const CurlRules& rules)
    : library_(library), handle_(library.EasyInit()), limit_(request.Limit) {
    SetUp(request, rules);
}

CurlTransfer::~CurlTransfer() {
    library_.EasyCleanUp(handle_);
}

template <typename Value>
void CurlTransfer::Set(CURLoption option, Value value) {
    const CURLcode result = library_.EasySetOption(handle_, option, value);
    if (result != CURLE_OK) End(result);
}

void CurlTransfer::SetUp(const HttpRequest& request, const CurlRules& rules) {
    const std::optional<AddressParts> address = ReadAddress(library_, request.Address);
    if (!address) return End(CURLE_URL_MALFORMAT);
    Set(CURLOPT_URL, address->WithoutAccount.c_str());
    Set(CURLOPT_USERAGENT, request.UserAgent.c_str());
    SetProxyAccount(request.UserName.empty() ? address->UserName : request.UserName,
                    request.UserName.empty() ? address->Password : request.Password);
    Set(CURLOPT_ACCEPT_ENCODING, "");
    Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    Set(CURLOPT_SSL_VERIFYPEER, 1L);
    Set(CURLOPT_SSL_VERIFYHOST, 2L);
    Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (!rules.TrustedCertificates.empty()) {
        Set(CURLOPT_CAINFO, rules.TrustedCertificates.c_str());
        Set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    const bool isPlain = address->Scheme == "http";
    Set(CURLOPT_PROTOCOLS_STR, isPlain ? "http,https" : "https"); // after redirects too
    if (isPlain) KeepToThisMachine();
    Set(CURLOPT_FOLLOWLOCATION, 1L);
    Set(CURLOPT_MAXREDIRS, mostRedirects);
    Set(CURLOPT_CONNECTTIMEOUT, rules.ConnectSeconds);
    Set(CURLOPT_LOW_SPEED_LIMIT, tooSlow);
    Set(CURLOPT_LOW_SPEED_TIME, rules.SlowSeconds);
    Set(CURLOPT_QUICK_EXIT, 1L); // the end of the program does not wait for a name server
    Set(CURLOPT_WRITEFUNCTION, &OnBody);
    Set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    Set(CURLOPT_HEADERFUNCTION, &OnHeader);
    Set(CURLOPT_HEADERDATA, static_cast<void*>(this));
}

// Sent only when a proxy asks for it, in the safest way that the proxy knows.
void CurlTransfer::SetProxyAccount(const std::string& userName, const std::string& password) {
    if (userName.empty()) return;
    Set(CURLOPT_PROXYUSERNAME, userName.c_str());
    Set(CURLOPT_PROXYPASSWORD, password.c_str());
    Set(CURLOPT_PROXYAUTH, static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST));
}

// Looks at the address that is really connected to: a name can resolve to anything.
void CurlTransfer::KeepToThisMachine() {
    Set(CURLOPT_NOPROXY, "*");
    Set(CURLOPT_OPENSOCKETFUNCTION, &OpenLocalSocket);
}

curl_socket_t CurlTransfer::OpenLocalSocket(void*, curlsocktype, curl_sockaddr* address) {
    if (!IsLoopback(address->addr)) return CURL_SOCKET_BAD;
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

std::size_t CurlTransfer::OnBody(const char* data, std::size_t size, std::size_t count, void* transfer) {
    return static_cast<CurlTransfer*>(transfer)->Append({data, size * count});
}

std::size_t CurlTransfer::OnHeader(const char* data, std::size_t size, std::size_t count, void* transfer) {
    return static_cast<CurlTransfer*>(transfer)->NoteHeader({data, size * count});
}

// Another number than that of the bytes ends the transfer.
std::size_t CurlTransfer::Append(std::string_view data) {
    if (taken_ == body_.size()) {
        body_.clear();
        taken_ = 0;
    }
    cutOff_ = data.size() > limit_ - received_;
    const std::string_view room = data.substr(0, static_cast<std::size_t>(limit_ - received_));
    body_ += room;
    received_ += room.size();
    return room.size();
}

std::size_t CurlTransfer::NoteHeader(std::string_view line) {
    if (StartsWithNoCase(line, "HTTP/")) chunked_ = false; // the answer after a redirect
    if (StartsWithNoCase(line, "Transfer-Encoding:") && ContainsNoCase(line, "chunked")) chunked_ = true;
    headerBytes_ += line.size();
    return headerBytes_ <= mostHeaderBytes ? line.size() : 0;
}

void CurlTransfer::End(CURLcode result) {
    ended_ = true;
    result_ = cutOff_ && result == CURLE_WRITE_ERROR ? CURLE_OK : result;
}

HttpHead CurlTransfer::Head() const {
    long status = 0;
    curl_off_t length = -1;
    library_.EasyGetInfo(handle_, CURLINFO_RESPONSE_CODE, &status);
    library_.EasyGetInfo(handle_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    HttpHead head{static_cast<int>(status), std::nullopt, chunked_ || length >= 0};
    if (length >= 0) head.Length = static_cast<std::uint64_t>(length);
    return head;
}

HttpFailure CurlTransfer::Failure() const {
    if (result_ == CURLE_OK) return {};
    return {static_cast<int>(result_), library_.EasyErrorText(result_)};
}

std::string CurlTransfer::Take(std::size_t bytes) {
    std::string part = body_.substr(taken_, bytes);
    taken_ += part.size();
    return part;
}

} // namespace korvalin
