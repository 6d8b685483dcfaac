#pragma once

#define NOGDI
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <string>

namespace pwr::platform {

/// UTF-8 text as the wide text that the system calls take.
std::wstring wideText(const std::string& text);

/// Wide text of the system as UTF-8.
std::string narrowText(const std::wstring& text);

/// The system's words for one of its error codes, without the trailing line end.
std::string errorText(DWORD error);

} // namespace pwr::platform
