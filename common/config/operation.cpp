#include "common/config/operation.h"

#include "common/config/tw_configfile_parser.h"

namespace pwr {

Operation::Operation(const std::string& name) : m_name(name) {}
Operation::~Operation() = default;
Operation::Operation(const Operation&) = default;
Operation& Operation::operator=(const Operation&) = default;

Operation* Operation::clone() const {
    return new Operation(*this);
}

const std::string& Operation::getCollectorType() const {
    static const std::string none;
    return none;
}

int Operation::addKey(std::string_view /*key*/, std::string_view /*value*/) {
    return -1;
}

std::size_t Operation::getKeyCount() const {
    return 0;
}

std::unique_ptr<OperationMetadata> Operation::createMetadata() const {
    return std::make_unique<OperationMetadata>(m_name, getCollectorType(), 0, m_orgMsgTag,
                                               OperationMetadata::ValueList());
}

std::vector<std::unique_ptr<OperationMetadata>> Operation::createAllMetadata() const {
    std::vector<std::unique_ptr<OperationMetadata>> all;
    all.push_back(createMetadata());
    return all;
}

int Operation::addCategory(const std::string& category) {
    if (!canSetCategory() || !isValidCategory(category)) {
        return -1;
    }
    m_categories.insert(category);
    return 0;
}

bool Operation::canSetCategory() const {
    return false;
}

bool Operation::isValidCategory(const std::string& /*category*/) const {
    return false;
}

void Operation::addRequirement(std::shared_ptr<const PluginRequirement> requirement) {
    if (requirement != nullptr) {
        m_requirements.push_back(std::move(requirement));
    }
}

bool Operation::isValidCommand(TWOpCommand command) const {
    return command == TWOpCommand::READ || command == TWOpCommand::WRITE;
}

bool Operation::isOperationSuitableFor(const CollectorPlugin* /*collector*/) const {
    return false;
}

bool Operation::hasCollectorOf(const Operation& other) const {
    const std::string& own = getCollectorType();
    const std::string& others = other.getCollectorType();
    if (own.empty() || others.empty() || own == others) {
        return true;
    }
    const TWConfigFileParser* const parser = TWConfigFileParser::current();
    CollectorPlugin* const collector = parser == nullptr ? nullptr : parser->getCollector(own);
    return collector != nullptr && collector == parser->getCollector(others);
}

} // namespace pwr
