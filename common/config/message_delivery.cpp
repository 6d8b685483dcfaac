#include "common/config/message_delivery.h"

#include "common/config/platform.h"
#include "common/plugin/logger.h"

namespace pwr {

namespace {

/// Whether a message is carried out by itself at this level of detail.
bool isDelivered(const InputMsg& message, InputMsg::Detail detail) {
    if (message.isGroupMember()) {
        return false;
    }
    const bool isForMaxDetailOnly =
        message.getTriggers().empty() && !message.getTriggerSet(InputMsg::Detail::MAX).triggers.empty();
    return detail == InputMsg::Detail::MAX || !isForMaxDetailOnly;
}

} // namespace

void MessageDelivery::deliver(const Platform& platform, const OfferedCap& offered, InputMsg::Detail detail,
                              std::vector<InputMsg*>& messages) {
    for (const InputMsg* const declared : offered.messages) {
        if (declared == nullptr) {
            logError("ERROR: found NULL msg!\n");
            continue;
        }
        if (!isDelivered(*declared, detail)) {
            continue;
        }
        InputMsg*& message = m_byQuestion[{&platform, declared, detail}];
        if (message == nullptr) {
            message = makeMessage_i(platform, offered, detail, *declared);
        }
        messages.push_back(message);
    }
}

InputMsg* MessageDelivery::makeMessage_i(const Platform& platform, const OfferedCap& offered,
                                         InputMsg::Detail detail, const InputMsg& declared) {
    std::unique_ptr<InputMsg> message = declared.clone();
    message->setPlatformName(platform.getName());
    message->setFeatureName(offered.cap.getName());
    message->setCapGroups(offered.cap.getGroups());
    if (detail == InputMsg::Detail::MAX) {
        message->useMaxDetail();
    }
    m_delivered.push_back(std::move(message));
    return m_delivered.back().get();
}

} // namespace pwr
