// CException: what the framework classes throw, by value; catch it by const reference. m_cause says why, in
// the numbers of the derived class; what() says it in words, in a text that lives as long as the exception.
#pragma once

#include "Kvt01Api.h"

#include <exception>

class KVT01_API CException : public std::exception {
public:
    explicit CException(int cause) noexcept : m_cause(cause) {}

    int m_cause;
};
