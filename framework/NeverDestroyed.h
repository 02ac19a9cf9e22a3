// A static object that is there before any code runs and stays until the process is gone: it needs no
// constructor call at load, and code that runs at exit may still use it.
#pragma once

template <class T>
union NeverDestroyed {
    T value;
    constexpr NeverDestroyed() : value() {}
    constexpr ~NeverDestroyed() {}
};
