#pragma once

#include <string>
#include <utility>
#include <vector>

namespace pwr {
class InputMsg;
class MsgMetadata;
} // namespace pwr

namespace tarnwell {

/// The constants of a message, in the order of the record; empty when it has none.
std::vector<std::pair<std::string, std::string>> constantsOf(const pwr::MsgMetadata& record);
/// One of them; "" when it is not there.
std::string constantOf(const pwr::MsgMetadata& record, const std::string& key);

/// Whether the readings of a message become a metric; the others are only saved.
bool hasMetric(const pwr::MsgMetadata& record);

/// Whether the message is read, not written: what is written gives no readings.
bool isRead(const pwr::InputMsg& message);

/// The processor that a message is carried out on: -1 for any. 1 when its text says neither a number nor "ALL".
int readProcessor(const pwr::InputMsg& message, int& processor);

/// What is wrong with a message, as far as no collector need be asked: keys and values of its metric, its processor,
/// and the messages of @p capability that it names. One sentence each.
std::vector<std::string> complaintsOf(const pwr::InputMsg& message, const pwr::MsgMetadata& record,
                                      const std::vector<pwr::InputMsg*>& capability);

} // namespace tarnwell
