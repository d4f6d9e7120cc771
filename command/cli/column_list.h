#ifndef CLI_COLUMN_LIST_H
#define CLI_COLUMN_LIST_H

#include <string_view>
#include <vector>

#include "output/columns.h"

namespace command {

/// The columns that the user chooses, each once.
///
///     list = [ "+" ] heading { "," heading }       +PARTNUM,owner
///
/// Case does not matter. With '+' the columns come after the `usual` ones. Throws UsageError when a
/// heading is unknown or missing.
std::vector<Heading> chosenColumns(std::string_view list, const std::vector<Heading>& usual,
                                   const std::vector<Heading>& all);

/// All columns of the answers. Those in `usual`, a list of headings, are shown without a choice; in
/// JSON all are.
template <class Answer>
Headings headingsFor(const Columns<Answer>& columns, const char* usual)
{
    const std::vector<Heading> all = headingsOf(columns);
    return {all, chosenColumns(usual, {}, all), all};
}

/// The same for answers whose columns are all shown.
template <class Answer>
Headings headingsFor(const Columns<Answer>& columns)
{
    const std::vector<Heading> all = headingsOf(columns);
    return {all, all, all};
}

} // namespace command

#endif
