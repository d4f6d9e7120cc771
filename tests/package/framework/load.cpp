// Loads a library as a plugin's host does, with every symbol it needs.
#include <cstdio>

#include <dlfcn.h>

int main(int, char** arguments)
{
    if (dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) != nullptr)
        return 0;
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
}
