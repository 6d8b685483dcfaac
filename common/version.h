#pragma once

/// The version of the library's headers, as plug-ins and hosts are built against it.
#define KRCOMMON_VERSION "0.1.0"
