// The program's arguments and its terminal, which hosts hand over in their own ways.
#pragma once

#include <string>
#include <vector>

namespace wn {

// The arguments that main was given, the program's name first: in UTF-8 where the host knows them as wide texts, else
// as their bytes are.
std::vector<std::string> Arguments(int argc, char** argv);

// While it lives, what the program writes to a terminal is taken for UTF-8.
class Utf8Terminal {
public:
    Utf8Terminal();
    Utf8Terminal(const Utf8Terminal&) = delete;
    Utf8Terminal& operator=(const Utf8Terminal&) = delete;
    ~Utf8Terminal();

private:
    [[maybe_unused]] unsigned m_previous;  // code page; 0 when there is none to go back to
};

}  // namespace wn
