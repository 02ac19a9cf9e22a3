// The mark of everything that leaves the shared library; all else is hidden.
#pragma once

#if defined(_WIN32) && defined(KVT01_BUILDING)
#define KVT01_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(KVT01_STATIC)
#define KVT01_API __declspec(dllimport)
#elif defined(__GNUC__)
#define KVT01_API __attribute__((visibility("default")))
#else
#define KVT01_API
#endif
