// Transfers on WinHTTP.
#include <windows.h>

#include <winhttp.h>

#include <array>
#include <charconv>
#include <chrono>
#include <memory>
#include <string>

#include "host/runtime/fetching/transfer.h"
#include "host/runtime/library_versions.h"
#include "platform/windows/system_texts.h"

namespace {

struct CloseInternet {
    void operator()(void* handle) const { WinHttpCloseHandle(handle); }
};
using Internet = std::unique_ptr<void, CloseInternet>;

constexpr int MILLISECONDS = 1000;
constexpr DWORD FIRST_STATUS_OF_FAILURE = 400;

std::string problem_of(const char* what) {
    return std::string(what) + " (error " + std::to_string(GetLastError()) + " of WinHTTP)";
}

struct Address {
    std::wstring host;
    std::wstring path;
    INTERNET_PORT port = 0;
    bool is_secure = false;
};

bool split(const std::wstring& url, Address& address) {
    URL_COMPONENTS parts{};
    parts.dwStructSize = sizeof parts;
    parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength =
        static_cast<DWORD>(-1);
    if (WinHttpCrackUrl(url.c_str(), 0, 0, &parts) == 0) return false;
    address.host.assign(parts.lpszHostName, parts.dwHostNameLength);
    address.path.assign(parts.lpszUrlPath, parts.dwUrlPathLength);
    const std::wstring extra(parts.lpszExtraInfo, parts.dwExtraInfoLength);
    address.path += extra.substr(0, extra.find(L'#'));
    address.port = parts.nPort;
    address.is_secure = parts.nScheme == INTERNET_SCHEME_HTTPS;
    return true;
}

bool set_number(void* handle, DWORD option, DWORD value) {
    return WinHttpSetOption(handle, option, &value, sizeof value) != 0;
}

// Why the request was not answered.
std::string problem_of_sending() {
    switch (GetLastError()) {
        case ERROR_WINHTTP_NAME_NOT_RESOLVED:
            return "the server's name is not known";
        case ERROR_WINHTTP_REDIRECT_FAILED:
            return "more than " + std::to_string(host::MOST_REDIRECTIONS) + " redirections";
        case ERROR_WINHTTP_SECURE_FAILURE:
            return "the server's certificate is not accepted";
        case ERROR_WINHTTP_TIMEOUT:
            return "the server does not answer in time";
        case ERROR_WINHTTP_UNRECOGNIZED_SCHEME:
            return "a redirection to another protocol";
        default:
            return problem_of("the server cannot be reached");
    }
}

bool send(void* request) {
    return set_number(request, WINHTTP_OPTION_MAX_HTTP_AUTOMATIC_REDIRECTS,
                      static_cast<DWORD>(host::MOST_REDIRECTIONS)) &&
           set_number(request, WINHTTP_OPTION_REDIRECT_POLICY,
                      WINHTTP_OPTION_REDIRECT_POLICY_ALWAYS) &&
           WinHttpSendRequest(request, nullptr, 0, nullptr, 0, 0, 0) != 0 &&
           WinHttpReceiveResponse(request, nullptr) != 0;
}

// Empty when the server sends the document.
std::string refusal(void* request) {
    DWORD status = 0;
    DWORD size = sizeof status;
    if (WinHttpQueryHeaders(request, WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER, nullptr,
                            &status, &size, nullptr) == 0) {
        return problem_of("the server gives no status");
    }
    if (status < FIRST_STATUS_OF_FAILURE) return {};
    return "The requested URL returned error: " + std::to_string(status);
}

// As text: a number of WinHTTP's own has 32 bits. Nothing announced: the largest number.
std::uint64_t announced_size(void* request) {
    std::array<wchar_t, 32> text{};
    DWORD size = sizeof text;
    if (WinHttpQueryHeaders(request, WINHTTP_QUERY_CONTENT_LENGTH, nullptr, text.data(), &size,
                            nullptr) == 0) {
        return UINT64_MAX;
    }
    const std::string digits = platform::narrow(text.data());
    std::uint64_t number = UINT64_MAX;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

std::string receive(void* request, host::TransferTarget& target) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(host::MOST_SECONDS);
    const std::uint64_t announced = announced_size(request);
    std::array<char, 65536> part{};
    std::uint64_t received = 0;
    for (;;) {
        DWORD count = 0;
        if (WinHttpReadData(request, part.data(), static_cast<DWORD>(part.size()), &count) == 0) {
            return problem_of("the transfer broke off");
        }
        if (count == 0) break;
        received += count;
        if (!target.store(part.data(), count)) return "the document cannot be stored";
        if (Clock::now() > end) return "the transfer takes too long";
    }
    const bool is_whole = announced == UINT64_MAX || received == announced;
    return is_whole ? std::string() : "the server closed the connection too early";
}

}  // namespace

const char* host::transfer_library() {
    return "WinHTTP";
}

std::string host::transfer_document(const char* url, TransferTarget& target) {
    Address address;
    if (!split(platform::wide(url), address)) return problem_of("the address cannot be understood");
    const Internet session(
        WinHttpOpen(L"sxml", WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY, nullptr, nullptr, 0));
    if (session == nullptr) return problem_of("WinHTTP does not start");
    constexpr int connect = static_cast<int>(CONNECT_SECONDS) * MILLISECONDS;
    constexpr int stalled = static_cast<int>(STALLED_SECONDS) * MILLISECONDS;
    WinHttpSetTimeouts(session.get(), connect, connect, stalled, stalled);
    const Internet connection(WinHttpConnect(session.get(), address.host.c_str(), address.port, 0));
    if (connection == nullptr) return problem_of("no connection");
    const Internet request(WinHttpOpenRequest(connection.get(), L"GET", address.path.c_str(),
                                              nullptr, nullptr, nullptr,
                                              address.is_secure ? WINHTTP_FLAG_SECURE : 0));
    if (request == nullptr || !send(request.get())) return problem_of_sending();
    std::string reason = refusal(request.get());
    return reason.empty() ? receive(request.get(), target) : reason;
}
