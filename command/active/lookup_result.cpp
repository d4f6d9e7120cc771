#include "active/lookup_result.h"

namespace command {

const Columns<LookupResult>& lookupColumns()
{
    using Result = const LookupResult&;
    static const Columns<LookupResult> columns{
        {{"NAME", Kind::text, "the path as it was given"},
         [](Result result) -> Field { return result.name; }},
        {{"OWNER", Kind::text, "the driver that owns it"},
         [](Result result) { return ownerField(result.owner); }},
        {{"ACTIVE", Kind::text, "the path that carries the I/O now"},
         [](Result result) { return optionalField(result.active); }},
        {{"CHANGED", Kind::text, "whether that is another path than the one given"},
         [](Result result) -> Field { return result.isChanged(); }},
        {{"TOOK", Kind::number, "the seconds that the lookup took"},
         [](Result result) -> Field { return result.took; }},
        {{"DISK", Kind::text, "the disk that the path names or is a partition of"},
         [](Result result) { return optionalField(result.disk); }},
        {{"RESULT", Kind::text, "how the lookup ended"},
         [](Result result) -> Field { return markOf(result.outcome.code); }},
        {{"REASON", Kind::text, "why it ended so"},
         [](Result result) -> Field { return result.outcome.reason; }},
        {{"USED", Kind::text, "the paths that the kernel uses for a map or an NVMe disk"},
         [](Result result) { return optionalField(result.used); }},
        {{"TIMELINE", Kind::text, "each command and wait of the lookup"},
         [](Result result) -> Field { return result.timeline; }},
        {{"WARNING", Kind::text, "why not to use the active path, or why there is none"},
         [](Result result) { return optionalField(result.warning); }},
    };
    return columns;
}

} // namespace command
