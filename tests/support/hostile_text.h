#ifndef TESTS_SUPPORT_HOSTILE_TEXT_H
#define TESTS_SUPPORT_HOSTILE_TEXT_H

#include <string>
#include <vector>

#include <rapidcheck.h>

/// Text of pieces that steer terminals, their fragments, bytes that are not UTF-8, and ordinary
/// characters.
inline rc::Gen<std::string> hostileText()
{
    using Pieces = std::vector<std::string>;
    using namespace std::string_literals;
    const auto piece = rc::gen::weightedOneOf<std::string>(
        {{3, rc::gen::element<std::string>("\x1b[2J", "\x1b]0;title\a", "\n", "\r", "\0"s, "\x7f",
                                           "\u009b31m", "\u0085", "\u202e", "\u2028", "\u2029",
                                           "\u200b", "\ufeff", "\u00ad", "\u061c", "\U000e0041",
                                           "\U000e0001", "\u2066")},
         {3, rc::gen::element<std::string>("\x9b", "\x80", "\x85", "\xc2", "\xe2", "\xe2\x80",
                                           "\xf3\xa0\x81", "\xc0\x9b", "\xe0\x82\x9b",
                                           "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xff", "\xad")},
         {2, rc::gen::element<std::string>("a", " ", "\\x", "\\", "/dev/sd", "\u00e4", "\u6f22",
                                           "e\u0301", "\U0001f4be", "1")},
         {1, rc::gen::string<std::string>()}});
    return rc::gen::map(rc::gen::container<Pieces>(piece), [](const Pieces& pieces) {
        std::string text;
        for (const std::string& each : pieces)
            text += each;
        return text;
    });
}

#endif
