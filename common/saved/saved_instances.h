#pragma once

#include "common/driver_interface.h"
#include "common/pw_types.h"
#include "common/values/data.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pwr::saved {

/// An entity as a file describes it. Entities of the processor topology are found by their node, all others by name
/// below their parent. Numbers are positions in the file, from 1 on in order of first mention; 0 is none.
struct SavedEntity {
    /// Persistent: never renumber.
    enum class Kind : pw_u8_t { NAMED = 0, SYSTEM = 1, TOPOLOGY = 2 };
    Kind kind = Kind::NAMED;
    pw_u32_t node = 0;   ///< TOPOLOGY: unique id of the node in the saved topology
    pw_u32_t parent = 0; ///< NAMED
    std::string name;
    std::string shortName;
    std::string fieldName;
    std::string description;
    std::string header;
};

struct SavedDescriptor {
    std::string name;
    std::string shortName;
    std::string fieldName;
    std::string description;
    std::string header;
    std::optional<Data> value; ///< INT, UINT, REAL or STRING
};

/// Whom the values of a message belong to: all of them, or those that came later. Handles that are new in the file
/// come in the order in which they were made, so that whoever makes them again gets ids in the same order.
struct SavedInstances {
    id_config_t message{};
    bool isAddition = false;      ///< these instances follow the message's earlier ones
    pw_u32_t firstEntity = 1;     ///< number of the first new entity, also when there is none
    pw_u32_t firstDescriptor = 1; ///< so that later ones keep their numbers when some are lost
    std::vector<SavedEntity> newEntities;
    std::vector<SavedDescriptor> newDescriptors;
    std::vector<std::pair<pw_u32_t, pw_u32_t>> instances; ///< (entity, descriptor) numbers
};

} // namespace pwr::saved
