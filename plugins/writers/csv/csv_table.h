#pragma once

#include "common/writer/table_message.h"

#include <string>

namespace csv_writer {

/// One table as a CSV text: a header row, then one row for each entity (README.md tells the shape).
std::string csvText(const pwr::TableMessage& table);

/// A field as RFC 4180 wants it: in quotation marks when it holds one, a comma or a line end.
std::string csvField(const std::string& text);

/// The part of a file name that a tag becomes: letters, digits and ".", anything else is "-". It neither starts nor ends
/// with one of these, so that no path and no hidden file can come of a tag.
std::string fileNamePart(const std::string& tag);

} // namespace csv_writer
