#pragma once

/// Marks what the library exports: one macro per class or free function.
/// Building the library defines KRCOMMON_BUILDING; everybody else imports.
#if defined(_WIN32)
#define KRCOMMON_PLUGIN_EXPORT __declspec(dllexport) // a plug-in module's own export, never imported
#if defined(KRCOMMON_BUILDING)
#define KRCOMMON_API __declspec(dllexport)
#else
#define KRCOMMON_API __declspec(dllimport)
#endif
#else
#define KRCOMMON_PLUGIN_EXPORT __attribute__((visibility("default")))
#define KRCOMMON_API __attribute__((visibility("default")))
#endif
