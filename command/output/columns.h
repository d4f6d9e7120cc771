#ifndef OUTPUT_COLUMNS_H
#define OUTPUT_COLUMNS_H

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "output/field.h"

namespace command {

enum class Kind { text, number };

/// The part of a column that does not depend on the type of its answers.
struct Heading {
    std::string_view name;
    Kind kind = Kind::text;
    std::string_view help = {}; // what the column tells, as a clause:  the driver that owns it

    /// The column's member in JSON: the name in lower case.
    std::string key() const;
};

/// A column of the answers of one type. This is all that a column needs: headings, lists of
/// columns, help and rows follow from it.
template <class Answer>
struct Column {
    Heading heading;
    Field (*value)(const Answer&);
};

template <class Answer>
using Columns = std::vector<Column<Answer>>;

template <class Answer>
Columns<Answer> concatenated(std::initializer_list<Columns<Answer>> lists)
{
    Columns<Answer> all;
    for (const Columns<Answer>& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

/// The columns that a user can choose from, and those that are shown without a choice.
struct Headings {
    std::vector<Heading> all;
    std::vector<Heading> usual;
    std::vector<Heading> json; // without a choice in JSON
};

template <class Answer>
std::vector<Heading> headingsOf(const Columns<Answer>& columns)
{
    std::vector<Heading> headings;
    for (const Column<Answer>& column : columns)
        headings.push_back(column.heading);
    return headings;
}

/// The names of the headings, joined by ", ".
std::string namesOf(const std::vector<Heading>& headings);

/// The columns under `headings`, in their order. REQUIRES: each heading is one of `columns`.
template <class Answer>
Columns<Answer> columnsUnder(const std::vector<Heading>& headings, const Columns<Answer>& columns)
{
    Columns<Answer> chosen;
    for (const Heading& heading : headings)
        chosen.push_back(
            *std::find_if(columns.begin(), columns.end(), [&](const Column<Answer>& column) {
                return column.heading.name == heading.name;
            }));
    return chosen;
}

} // namespace command

#endif
