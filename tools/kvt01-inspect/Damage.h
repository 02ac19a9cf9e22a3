// What is wrong with a file: the reason is a line for the user, without the name of the file.
#pragma once

#include <stdexcept>

class Damage : public std::runtime_error {
    using std::runtime_error::runtime_error;
};
