#include "app/OwnArguments.h"

#include <cstddef>
#include <cstring>

namespace zuvo {

OwnArguments::OwnArguments(int argc, char** argv) : m_count(argc), m_texts(argv, argv + argc) {
    for (int i = 1; i < argc; ++i) {
        volatile char* shown = argv[i]; // read by others: no compiler may leave it out
        for (std::size_t left = std::strlen(argv[i]); left > 0; --left)
            *shown++ = '\0';
    }
    m_values.reserve(m_texts.size() + 1);
    for (auto& text : m_texts)
        m_values.push_back(text.data());
    m_values.push_back(nullptr);
}

} // namespace zuvo
