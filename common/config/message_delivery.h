#pragma once

#include <map>
#include <memory>
#include <tuple>
#include <vector>

#include "common/config/input_msg.h"
#include "common/config/offered_cap.h"

namespace pwr {

/// Makes the messages that queries hand out: declared ones, with what depends on who asks filled in. The same
/// question gets the same objects, which live as long as this object.
class MessageDelivery {
public:
    /// Appends the capability's messages as they are carried out on the platform.
    void deliver(const Platform& platform, const OfferedCap& offered, InputMsg::Detail detail,
                 std::vector<InputMsg*>& messages);
    /// After declarations changed: later questions get new objects.
    void refresh() { m_byQuestion.clear(); }

private:
    InputMsg* makeMessage_i(const Platform& platform, const OfferedCap& offered, InputMsg::Detail detail,
                            const InputMsg& declared);

    std::vector<std::unique_ptr<InputMsg>> m_delivered;
    std::map<std::tuple<const Platform*, const InputMsg*, InputMsg::Detail>, InputMsg*> m_byQuestion;
};

} // namespace pwr
