// A shell start-up file or a key file of the user's.

#include "Fuzzing.h"
#include "steps/KeySearch.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    if (const auto key = keyInShellFile(text, "OPENAI_API_KEY"))
        fuzzing::require(!key->empty() && key->find('\n') == std::string::npos);
    if (const auto key = keyInKeyFile(text))
        fuzzing::require(!key->empty());
}
