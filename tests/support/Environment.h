// Variables of the environment for one test; all are put back at the end.
#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include "System.h"

class Environment {
public:
    Environment() = default;
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment()
    {
        for (const auto& [name, value] : m_before)
            SetVariable(name.c_str(), value ? value->c_str() : nullptr);
    }

    void Set(const std::string& name, const std::string& value)
    {
        Remember(name);
        SetVariable(name.c_str(), value.c_str());
    }
    void Unset(const std::string& name)
    {
        Remember(name);
        SetVariable(name.c_str(), nullptr);
    }

private:
    void Remember(const std::string& name)
    {
        const char* const value = std::getenv(name.c_str());
        m_before.try_emplace(name, value == nullptr ? std::nullopt : std::optional<std::string>(value));
    }

    std::map<std::string, std::optional<std::string>> m_before;
};
