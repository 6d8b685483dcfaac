#pragma once

namespace pwr {
class SystemMetadata;
}

namespace tarnwell {

/// Fills what the record says of the program: its version, the state of the sources that it was built from and
/// their date ("" where the build did not know them). Two builds of the same sources say the same.
void describeBuild(pwr::SystemMetadata& system);

} // namespace tarnwell
