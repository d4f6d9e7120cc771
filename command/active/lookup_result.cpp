#include "active/lookup_result.h"

namespace command {

const Columns<LookupResult>& lookupColumns()
{
    using Result = const LookupResult&;
    static const Columns<LookupResult> columns{
        {{"NAME"}, [](Result result) -> Field { return result.name; }},
        {{"OWNER"}, [](Result result) { return ownerField(result.owner); }},
        {{"ACTIVE"}, [](Result result) { return optionalField(result.active); }},
        {{"CHANGED"}, [](Result result) -> Field { return result.isChanged(); }},
        {{"TOOK", Kind::number}, [](Result result) -> Field { return result.took; }},
        {{"TIMELINE"}, [](Result result) -> Field { return result.timeline; }},
        {{"WARNING"}, [](Result result) { return optionalField(result.warning); }},
    };
    return columns;
}

} // namespace command
