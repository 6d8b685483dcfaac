#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "common/export.h"
#include "common/model/unique_id.h"

class WriterStream;

namespace pwr {

class DataDescriptor;
class SystemMetadata;

/// The one registry of the process: everything that carries an id, in the order it was registered.
/// It announces each new object to the attached writer stream, so that writers can turn ids into names, and
/// builds the entities of the processor topology.
/// Ownership: the registry keeps what it is given until the process ends; it is never destroyed itself.
/// Threads:   no locks; handles are made on one thread at a time (set-up, then the metric thread).
class KRCOMMON_API DataHandleProvider {
public:
    DataHandleProvider() = delete;

    /// Builds the processor entities from a collection's record, unless there are some already (then 0 and no
    /// change). Returns 1, after a warning, when the record has no usable processor part or its tree is not
    /// sound; what could be built is kept, the system entity always. The record may be deleted afterwards.
    static int initTopology(const SystemMetadata& metadata);

    /// Builds the processor entities anew, for a machine whose topology changed. The earlier entities stay
    /// registered, with their names and ids; only the look-ups move to the new ones. Result as initTopology.
    static int resetTopology(const SystemMetadata& metadata);

    /// Attaches the stream that handles are announced to, in the place of any earlier one. The stream first
    /// receives everything registered so far in one message. Returns 0; 1 for null, which changes nothing.
    static int addStream(WriterStream* stream);

    /// Detaches the stream when it is the attached one; for a host that is about to end it. Returns 0, or 1
    /// when another stream or none is attached.
    static int removeStream(const WriterStream* stream);

    /// Registers a finished object: lists it, maps its id and announces it. Returns it for the caller's use.
    template <class Kind> static Kind* adopt(std::unique_ptr<Kind> made) {
        Kind* const kept = made.get();
        registerId(std::unique_ptr<const UniqueId>(std::move(made)));
        return kept;
    }
    static void registerId(std::unique_ptr<const UniqueId> made);

    /// The registered object with an id, null when there is none; silent.
    [[nodiscard]] static const UniqueId* findId(std::uint64_t id);

    /// The first data descriptor registered under a name, null when there is none; for sharing descriptors.
    [[nodiscard]] static const DataDescriptor* findDescriptor(const std::string& name);
};

} // namespace pwr
