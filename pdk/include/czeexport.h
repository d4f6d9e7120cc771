#ifndef CZEEXPORT_H
#define CZEEXPORT_H

#include <cstddef> // defines the macros of the standard library that are asked for below

// Host, framework and libraries exchange strings, lists and exceptions. A host whose own have
// another layout would crash, so it is refused.
#if __cplusplus < 201703L
#error "dmpclaim: these headers are C++17. Compile with -std=c++17 or later."
#endif
#ifndef __LP64__
#error "dmpclaim: 64-bit Linux only. Compile without -m32 or -mx32."
#endif
#ifndef __GLIBCXX__
#error "dmpclaim: the library takes the strings of libstdc++. Compile without -stdlib=libc++."
#elif !_GLIBCXX_USE_CXX11_ABI
#error "dmpclaim: the library takes std::__cxx11::string. Set _GLIBCXX_USE_CXX11_ABI to 1."
#endif
#ifdef _GLIBCXX_DEBUG
#error "dmpclaim: _GLIBCXX_DEBUG changes std::vector. Compile with _GLIBCXX_ASSERTIONS."
#endif
#ifndef __cpp_exceptions
#error "dmpclaim: operations may throw, as std::bad_alloc. Compile without -fno-exceptions."
#endif

/// Marks what leaves a shared library. Everything is built with hidden visibility, so a class that
/// the host, the framework and the library exchange carries this mark.
#define CZE_EXPORT __attribute__((visibility("default")))

/// Keeps a private operation of an exported class inside its library.
#define CZE_LOCAL __attribute__((visibility("hidden")))

#endif
