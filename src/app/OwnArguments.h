#pragma once

#include <string>
#include <vector>

namespace zuvo {

/// The command line, moved out of the memory in which every user of the machine can read it: a sign-in link holds a
/// token. From then on the system shows the program's name alone.
class OwnArguments {
public:
    /// Overwrites all arguments but the program's name in place. Called before anything else in `main`.
    OwnArguments(int argc, char** argv);
    OwnArguments(const OwnArguments&) = delete;
    OwnArguments& operator=(const OwnArguments&) = delete;
    ~OwnArguments() = default;

    // For an application object, which changes them and must not outlive this one.
    [[nodiscard]] int& count() { return m_count; }
    [[nodiscard]] char** values() { return m_values.data(); }

private:
    int m_count = 0;
    std::vector<std::string> m_texts;
    std::vector<char*> m_values; ///< into `m_texts`, with a null behind the last
};

} // namespace zuvo
