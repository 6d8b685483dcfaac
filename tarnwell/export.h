#pragma once

namespace CLI {
class App;
}

namespace tarnwell {

struct Settings;

void declareExport(CLI::App& options, Settings& settings);

/// Writes every value of a saved collection as it was read, one a line, as CSV (RFC 4180) or as one JSON object each.
int runExport(const Settings& settings);

} // namespace tarnwell
