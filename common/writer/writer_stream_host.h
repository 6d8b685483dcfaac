#pragma once

#include "common/export.h"
#include "common/writer/table_class.h"

#include <set>

class WriterPlugin;
class WriterStream;

namespace pwr {

/// What the host program does with a WriterStream beyond pushing.
class KRCOMMON_API WriterStreamHost {
public:
    /// Makes a stream on the caller's set, which must outlive it. End it with destroy().
    static WriterStream* create(std::set<WriterPlugin*>& plugins);

    /// Ends a stream. Takes it out of the environment and of the handle registry when they name it, so that
    /// neither pushes into a stream that is gone. Null is allowed.
    static void destroy(WriterStream* stream);

    /// Calls every plug-in's flushResults(); 1 when one of them failed, else 0.
    static int flush(WriterStream& stream);

    /// Notes that some writer takes tables of this class.
    static int addSupportedTableClass(WriterStream& stream, TableClass tableClass);

    WriterStreamHost() = delete;
};

} // namespace pwr
