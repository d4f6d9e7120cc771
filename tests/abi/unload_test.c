/* usage: unload_test LIBDMPCLAIM FRAMEWORK_LIBRARY...
 *
 * A plugin's host in C, which links none of the libraries: loads each, uses the first one, and
 * finds that all of them have left the process after dlclose. A symbol that is unique in a process,
 * or a destructor of a thread's variable, would keep a library for ever. */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define STRING "NSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"

static const char* const libraries[] = {"/libdmpclaim.so", "/libzepdk_4_4ST.so",
                                        "/libzecmn_4_4ST.so", "/libzeutilST.so"};

static void require(int holds, const char* what)
{
    if (holds)
        return;
    fprintf(stderr, "not so: %s\n", what);
    exit(1);
}

/* The number of the libraries that are in this process. */
static int count_mapped(void)
{
    int found[4] = {0};
    char line[4096];
    FILE* const maps = fopen("/proc/self/maps", "re");
    require(maps != NULL, "/proc/self/maps can be read");
    while (fgets(line, sizeof line, maps) != NULL) {
        for (int number = 0; number < 4; ++number)
            found[number] |= strstr(line, libraries[number]) != NULL;
    }
    fclose(maps);
    return found[0] + found[1] + found[2] + found[3];
}

static void* load(const char* path)
{
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == NULL)
        fprintf(stderr, "%s\n", dlerror());
    require(library != NULL, "the library can be loaded");
    return library;
}

/* Stores the address of a name in `pointer`, which points to a pointer to a function or object. */
static void find(void* library, const char* name, void* pointer)
{
    void* const address = dlsym(library, name);
    require(address != NULL, name);
    memcpy(pointer, &address, sizeof address);
}

static void use_strings(void* library)
{
    size_t (*copy)(char*, const char*, size_t);
    int32_t (*format)(char*, size_t, const char*, ...);
    int32_t (*format_wide)(wchar_t*, size_t, const wchar_t*, ...);
    char text[8];
    wchar_t wide[8];
    find(library, "Y_strlcpy", &copy);
    find(library, "Y_snprintf", &format);
    find(library, "Y_snwprintf", &format_wide);
    require(copy(text, "/dev/sdc12", sizeof text) == 7, "a copy is cut at seven characters");
    require(format(text, sizeof text, "p%d", 12) == 3, "three characters are formatted");
    require(format_wide(wide, 8, L"p%d", 12) == 3, "three wide characters are formatted");
}

/* A std::string of libstdc++ whose text is short. */
struct string {
    char* text;
    size_t length;
    char local[16];
};

static void use_manager(void* library)
{
    void* manager[32];
    struct string path = {path.local, 9, "/dev/sdc1"};
    void (*construct)(void*);
    void (*destroy)(void*);
    _Bool (*is_partition)(void*, struct string*);
    find(library, "_ZN16CDmpClaimManagerC1Ev", &construct);
    find(library, "_ZN16CDmpClaimManagerD1Ev", &destroy);
    find(library, "_ZN16CDmpClaimManager11isPartitionE" STRING, &is_partition);
    construct(manager);
    require(is_partition(manager, &path), "/dev/sdc1 is a partition");
    destroy(manager);
}

/* Runs a program, and asks for the volume manager's tools: what uses the framework. */
static void use_framework(void* library)
{
    struct {
        char** slots;
        void* log;
    } support = {NULL, NULL};
    void* lines[3] = {NULL, NULL, NULL};
    int (*run)(void*, const char*, void*);
    _Bool (*is_installed)(void*);
    find(library, "_ZTV13CKoDMPSupport", &support.slots);
    support.slots += 2;
    find(library, "_ZN13CKoDMPSupport14executeCommandEPKcRSt6vectorI" STRING "SaIS8_EE", &run);
    find(library, "_ZN13CKoDMPSupport16isKoDMPInstalledEv", &is_installed);
    require(run(&support, "/bin/echo one", lines) == 0, "/bin/echo can be run");
    require((char*)lines[1] - (char*)lines[0] == sizeof(struct string), "it prints one line");
    require(run(&support, "/none", lines) == 1, "an exception of the framework is caught");
    is_installed(&support);
    free(lines[0]);
}

int main(int count, char** arguments)
{
    require(count == 5 && count_mapped() == 0, "none of the libraries is linked");
    void* const library = load(arguments[1]);
    require(count_mapped() == 4, "the libraries are loaded");
    use_strings(library);
    use_manager(library);
    use_framework(library);
    require(dlclose(library) == 0 && count_mapped() == 0, "the libraries are unloaded");

    for (int number = 2; number < count; ++number) {
        void* const framework = load(arguments[number]);
        require(count_mapped() > 0, "a library of the framework is loaded");
        require(dlclose(framework) == 0, "a library of the framework is closed");
        require(count_mapped() == 0, arguments[number]);
    }
    return 0;
}
