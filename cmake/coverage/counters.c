// Keeps the counters of a program or shared library in a file that all its processes map. A process
// then counts however it ends: by _exit, by exec or by SIGKILL. clang 19 has such a mode of its
// own, but not for MC/DC.
//
// The file COVERAGE_FOLDER/ID holds the counters, the bitmaps, and then a raw profile without
// counts, into which report.py copies them. All memory of the two sections is whole pages
// (counters.ld).
//
// Uses raw system calls: many tests replace the functions of the C library.

#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/mman.h>
#include <sys/syscall.h>

#define SECTION_EDGE(name, symbol)                                                                 \
    extern char name[] __asm__(symbol) __attribute__((weak, visibility("hidden")))
SECTION_EDGE(countersBegin, "__start___llvm_prf_cnts");
SECTION_EDGE(countersEnd, "__stop___llvm_prf_cnts");
SECTION_EDGE(bitmapsBegin, "__start___llvm_prf_bits");
SECTION_EDGE(bitmapsEnd, "__stop___llvm_prf_bits");

// Of the profile runtime.
const uint64_t* __llvm_profile_begin_data(void);
const uint64_t* __llvm_profile_end_data(void);
uint64_t __llvm_profile_get_size_for_buffer(void);
int __llvm_profile_write_buffer(char* buffer);

// Its definition keeps the profile runtime from writing a file at exit.
int __llvm_profile_runtime;

static long call(long number, long a, long b, long c, long d, long e, long f)
{
    long result = number;
    register long r10 __asm__("r10") = d;
    register long r8 __asm__("r8") = e;
    register long r9 __asm__("r9") = f;
    __asm__ volatile("syscall"
                     : "+a"(result)
                     : "D"(a), "S"(b), "d"(c), "r"(r10), "r"(r8), "r"(r9)
                     : "rcx", "r11", "memory");
    return result;
}

static long openFile(const char* path, int flags)
{
    return call(SYS_openat, AT_FDCWD, (long)path, flags | O_CLOEXEC, 0666, 0, 0);
}

static char* map(void* address, uint64_t size, int flags, long file, uint64_t offset)
{
    return (char*)call(SYS_mmap, (long)address, (long)size, PROT_READ | PROT_WRITE,
                       MAP_SHARED | flags, file, (long)offset);
}

// Of all functions' records: their names' and structures' hashes, and their numbers of counters and
// of bitmap bytes. Many programs have the name "main" alone. The other words are addresses.
static uint64_t identity(void)
{
    uint64_t hash = 14695981039346656037U; // FNV-1a
    for (const uint64_t* at = __llvm_profile_begin_data(); at != __llvm_profile_end_data();
         at += 8) {
        const uint64_t words[] = {at[0], at[1], at[6], at[7]};
        for (const unsigned char* byte = (const unsigned char*)words;
             byte != (const unsigned char*)(words + 4); ++byte)
            hash = (hash ^ *byte) * 1099511628211U;
    }
    return hash;
}

// Under a name of its own first: a process that starts meanwhile sees a whole file or none.
static void createFile(const char* path, uint64_t profileOffset)
{
    char own[4200];
    snprintf(own, sizeof own, "%s.%ld", path, call(SYS_getpid, 0, 0, 0, 0, 0, 0));
    const long file = openFile(own, O_RDWR | O_CREAT | O_EXCL);
    if (file < 0)
        return;
    const uint64_t size = profileOffset + __llvm_profile_get_size_for_buffer();
    call(SYS_fchmod, file, 0666, 0, 0, 0, 0);
    call(SYS_ftruncate, file, (long)size, 0, 0, 0, 0);
    char* memory = map(NULL, size, 0, file, 0);
    __llvm_profile_write_buffer(memory + profileOffset);
    call(SYS_munmap, (long)memory, (long)size, 0, 0, 0, 0);
    call(SYS_close, file, 0, 0, 0, 0, 0);
    call(SYS_link, (long)own, (long)path, 0, 0, 0, 0);
    call(SYS_unlink, (long)own, 0, 0, 0, 0, 0);
}

__attribute__((constructor(101))) static void shareCounters(void)
{
    const uint64_t counters = (uint64_t)(countersEnd - countersBegin);
    const uint64_t bitmaps = (uint64_t)(bitmapsEnd - bitmapsBegin);
    if (counters == 0)
        return;
    char path[4096];
    snprintf(path, sizeof path, "%s/%016lx", COVERAGE_FOLDER, (unsigned long)identity());
    long file = openFile(path, O_RDWR);
    if (file < 0) {
        createFile(path, counters + bitmaps);
        file = openFile(path, O_RDWR);
    }
    if (file < 0)
        return;
    map(countersBegin, counters, MAP_FIXED, file, 0);
    if (bitmaps != 0)
        map(bitmapsBegin, bitmaps, MAP_FIXED, file, counters);
    call(SYS_close, file, 0, 0, 0, 0, 0);
}
