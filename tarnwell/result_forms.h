#pragma once

namespace tarnwell {

class PluginSet;
struct Settings;

/// Leaves of the writers those whose results were asked for, and gives files that have no name yet their default one.
/// 0; or an exit code, and the user was told, when there is no such form.
int chooseResultForms(const Settings& settings, PluginSet& plugins);

} // namespace tarnwell
