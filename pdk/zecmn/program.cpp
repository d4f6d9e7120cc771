#include "program.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace koze_pdk_4_4::runner {

namespace {

/// Returns `text`. Throws when it holds a NUL byte, which would end the child's C string early.
const std::string& checked(const std::string& text, const char* what)
{
    if (text.find('\0') != std::string::npos)
        throw std::invalid_argument(std::string(what) + " holds a NUL byte");
    return text;
}

/// The pieces of `text` between single characters `separator` that are not empty.
std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> pieces;
    std::size_t first = text.find_first_not_of(separator);
    while (first != std::string::npos) {
        const std::size_t end = std::min(text.find(separator, first), text.size());
        pieces.emplace_back(text, first, end - first);
        first = text.find_first_not_of(separator, end);
    }
    return pieces;
}

/// The name of a variable with its "=".
std::string_view nameOf(std::string_view variable)
{
    return variable.substr(0, std::min(variable.find('='), variable.size() - 1) + 1);
}

/// Sets `variable`, NAME=VALUE, in place of every variable of that name.
void set(std::vector<std::string>& environment, std::string variable)
{
    const auto sameName = [name = nameOf(variable)](const std::string& other) {
        return other.compare(0, name.size(), name) == 0;
    };
    environment.erase(std::remove_if(environment.begin(), environment.end(), sameName),
                      environment.end());
    environment.push_back(std::move(variable));
}

std::vector<std::string> variablesOf(const passwd& entry)
{
    const auto text = [](const char* field, const char* fallback) -> std::string {
        return field == nullptr || *field == '\0' ? fallback : field;
    };
    return {"HOME=" + text(entry.pw_dir, "/"), std::string("USER=") + entry.pw_name,
            std::string("LOGNAME=") + entry.pw_name, "SHELL=" + text(entry.pw_shell, "/bin/sh")};
}

std::vector<gid_t> groupsOf(const char* name, gid_t group)
{
    int count = 32;
    std::vector<gid_t> groups(32);
    while (getgrouplist(name, group, groups.data(), &count) < 0) {
        if (static_cast<std::size_t>(count) <= groups.size())
            throw std::bad_alloc(); // it did not fail for lack of room
        groups.resize(static_cast<std::size_t>(count));
    }
    groups.resize(static_cast<std::size_t>(count));
    return groups;
}

/// `groups` holds the account's own group too: getgrouplist lists it.
bool hasUnusableNumber(const Identity& identity)
{
    const auto& groups = identity.groups;
    return identity.user == static_cast<uid_t>(-1) ||
           std::find(groups.begin(), groups.end(), static_cast<gid_t>(-1)) != groups.end();
}

} // namespace

std::vector<std::string> splitCommand(const std::string& command)
{
    std::vector<std::string> arguments = split(checked(command, "the command"), ' ');
    if (arguments.empty())
        throw std::invalid_argument("the command is empty");
    if (arguments.front().front() != '/')
        throw std::invalid_argument("the path is not absolute");
    return arguments;
}

std::vector<std::string> childEnvironment(const char* const* host, const std::string& additions,
                                          const std::optional<Identity>& account)
{
    std::vector<std::string> environment;
    for (; host != nullptr && *host != nullptr; ++host) {
        if (std::strncmp(*host, "LANGUAGE=", 9) != 0)
            environment.emplace_back(*host);
    }
    set(environment, "LC_ALL=C");
    if (account) {
        for (const std::string& variable : account->variables)
            set(environment, variable);
    }
    for (std::string& addition : split(checked(additions, "the environment"), '\n')) {
        if (addition.find('=') + 1 < 2) // npos + 1 is 0
            throw std::invalid_argument("no variable: " + addition);
        set(environment, std::move(addition));
    }
    return environment;
}

std::string checkedDirectory(const std::string& directory)
{
    return checked(directory, "the directory");
}

Identity lookUpUser(const std::string& name)
{
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> texts(1024);
    int error = 0;
    while ((error = getpwnam_r(checked(name, "the user").c_str(), &entry, texts.data(),
                               texts.size(), &found)) == ERANGE)
        texts.resize(texts.size() * 2);
    if (error != 0)
        throw std::system_error(error, std::generic_category(), "cannot look up user " + name);
    if (found == nullptr)
        throw std::invalid_argument("there is no user " + name);
    Identity identity{entry.pw_uid, entry.pw_gid, groupsOf(entry.pw_name, entry.pw_gid),
                      variablesOf(entry)};
    if (hasUnusableNumber(identity))
        throw std::invalid_argument("user " + name +
                                    " or a group of it has the number 4294967295, which is none");
    return identity;
}

} // namespace koze_pdk_4_4::runner
