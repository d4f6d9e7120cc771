#include "kernel/multipath_status.h"

#include <algorithm>
#include <stdexcept>

#include "kernel/sysfs_file.h"

namespace command {

namespace {

struct Malformed : std::runtime_error {
    Malformed() : std::runtime_error("no status of a multipath target") {}
};

/// Takes words off the front of a text. Every operation throws Malformed when the text does not go
/// on as it should.
class Words {
public:
    explicit Words(std::string_view text) : m_rest(text) { skipBlanks(); }

    bool areTaken() const { return m_rest.empty(); }

    std::string_view word()
    {
        if (m_rest.empty())
            throw Malformed();
        const std::string_view taken = m_rest.substr(0, m_rest.find(' '));
        m_rest.remove_prefix(taken.size());
        skipBlanks();
        return taken;
    }

    std::uint64_t number()
    {
        const std::optional<std::uint64_t> value = decimal(word());
        if (!value)
            throw Malformed();
        return *value;
    }

    DeviceNumber deviceNumber()
    {
        const std::optional<DeviceNumber> value = parseDeviceNumber(word());
        if (!value)
            throw Malformed();
        return *value;
    }

    /// One of the characters, as a word of its own.
    char oneOf(std::string_view characters)
    {
        const std::string_view taken = word();
        if (taken.size() != 1 || characters.find(taken.front()) == std::string_view::npos)
            throw Malformed();
        return taken.front();
    }

    void skip(std::uint64_t count)
    {
        for (; count > 0; --count)
            word();
    }

    void skipList() { skip(number()); }

private:
    void skipBlanks()
    {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(' '), m_rest.size()));
    }

    std::string_view m_rest;
};

MultipathStatus::GroupState groupState(char mark)
{
    switch (mark) {
    case 'A':
        return MultipathStatus::GroupState::active;
    case 'E':
        return MultipathStatus::GroupState::enabled;
    default:
        return MultipathStatus::GroupState::disabled;
    }
}

MultipathStatus::Path readPath(Words& words, std::uint64_t extraWords)
{
    MultipathStatus::Path path;
    path.number = words.deviceNumber();
    path.isActive = words.oneOf("AF") == 'A';
    path.failures = words.number();
    words.skip(extraWords);
    return path;
}

MultipathStatus::Group readGroup(Words& words)
{
    MultipathStatus::Group group;
    group.state = groupState(words.oneOf("AED"));
    words.skipList();
    std::uint64_t paths = words.number();
    const std::uint64_t extraWords = words.number();
    for (; paths > 0; --paths)
        group.paths.push_back(readPath(words, extraWords));
    return group;
}

MultipathStatus readStatus(Words& words)
{
    MultipathStatus status;
    words.skipList();
    words.skipList();
    std::uint64_t groups = words.number();
    status.nextGroup = words.number();
    for (; groups > 0; --groups)
        status.groups.push_back(readGroup(words));
    if (!words.areTaken())
        throw Malformed();
    return status;
}

} // namespace

std::optional<MultipathStatus> parseMultipathStatus(std::string_view text)
{
    try {
        Words words(text);
        return readStatus(words);
    } catch (const Malformed&) {
        return std::nullopt;
    }
}

} // namespace command
