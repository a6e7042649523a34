// Two version texts of the account service, parted by a line end.

#include "Fuzzing.h"
#include "model/PluginVersion.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto end = text.find('\n');
    const auto a = text.substr(0, end);
    const auto b = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    fuzzing::require(!isNewerVersion(a, a));
    fuzzing::require(!(isNewerVersion(a, b) && isNewerVersion(b, a)));
    // Zeros at the end, and pieces that are no integers, change nothing.
    const auto longer = std::string(a) + ".0.x..0";
    fuzzing::require(!isNewerVersion(longer, a) && !isNewerVersion(a, longer));
    (void)decodeRecordText<PluginVersionFile>(text);
}
