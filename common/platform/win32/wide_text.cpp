#include "common/platform/win32/wide_text.h"

namespace pwr::platform {

std::wstring wideText(const std::string& text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string narrowText(const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, narrow.data(), bytes, nullptr, nullptr);
    return narrow;
}

std::string errorText(DWORD error) {
    wchar_t* words = nullptr;
    const DWORD flags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD length =
        FormatMessageW(flags, nullptr, error, 0, reinterpret_cast<wchar_t*>(&words), 0, nullptr);
    std::string text =
        length > 0 ? narrowText(std::wstring(words, length)) : "error " + std::to_string(error);
    LocalFree(words);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

} // namespace pwr::platform
