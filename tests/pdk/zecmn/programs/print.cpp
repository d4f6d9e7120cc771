// print STATUS { STREAM TEXT }: prints the texts, each to the stream of that number, and ends with
// the status. In a text \n, \r and \0 mean what they mean in C, and \s is a space.
#include <cstdlib>
#include <string>

#include <unistd.h>

static std::string unescaped(const char* text)
{
    std::string plain;
    for (; *text != '\0'; ++text) {
        if (*text != '\\')
            plain += *text;
        else if (*++text == 'n')
            plain += '\n';
        else if (*text == 'r')
            plain += '\r';
        else
            plain += *text == 's' ? ' ' : '\0';
    }
    return plain;
}

int main(int argc, char** argv)
{
    for (int i = 2; i + 1 < argc; i += 2) {
        const std::string text = unescaped(argv[i + 1]);
        if (write(std::atoi(argv[i]), text.data(), text.size()) !=
            static_cast<ssize_t>(text.size()))
            return 99;
    }
    return std::atoi(argv[1]);
}
