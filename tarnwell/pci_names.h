#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace tarnwell {

/// A device by vendor and device id.
using PciId = std::pair<unsigned, unsigned>;

/// The names of devices from a text in the form of the list of PCI ids: "vvvv  Vendor" lines, below each its
/// "\tdddd  Device" lines. A device whose vendor alone is known has the vendor's name and a blank at the end.
/// Ids that the text does not have are left out.
std::map<PciId, std::string> pciNames(const std::string& text, const std::set<PciId>& wanted);

/// What kind of device a class code (class, subclass, interface: a byte each) stands for, such as "network controller".
const char* pciClassName(std::uint32_t classCode);

} // namespace tarnwell
