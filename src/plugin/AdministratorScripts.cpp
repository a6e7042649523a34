#include "plugin/AdministratorScripts.h"

#include "base/Paths.h"
#include "base/Text.h"
#include "platform/ForeignWords.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zuvo {

namespace {

std::string administratorScript(const std::string& escapedLine) {
    return "do shell script \"" + escapedLine + "\" with administrator privileges";
}

std::string quoted(const std::string& path) {
    return "'" + path + "'";
}

std::string parentOf(const std::string& path) {
    return path.substr(0, path.find_last_of('/'));
}

/// The line as it is in the script's own text.
std::string escaped(const std::string& line) {
    return replaceAll(replaceAll(line, "\\", R"(\\)"), "\"", R"(\")");
}

/// A double quote as it stands in the script's own text.
constexpr const char* quote = R"(\")";

/// {"key":"value",...} with its double quotes escaped.
template <std::size_t Count>
std::string escapedJson(const std::array<std::pair<std::string, std::string>, Count>& fields) {
    std::string json = "{";
    for (const auto& [key, value] : fields) {
        if (json.size() > 1)
            json += ",";
        json += quote + key + quote + ":" + quote + value + quote;
    }
    return json + "}";
}

std::string replacementLine(const std::string& pluginFolder, const std::string& extracted) {
    return "rm -rf " + quoted(pluginFolder) + " && cp -R " + quoted(extracted + "/" + lastPathComponent(pluginFolder)) +
           " " + quoted(parentOf(pluginFolder));
}

// Pieces of the line that replaces the plugin by a checked copy. The working folder is root's own by then: whoever may
// rename it cannot change what is in it.

/// Sets $h to the system's program for SHA-256.
std::string hashChoice() {
    return "h='shasum -a 256'; if command -v sha256sum >/dev/null; then h=sha256sum; fi; ";
}

/// Runs at the end, whatever that is: after a failure puts the old plugin back, or removes what was copied if there was
/// none, and removes root's folder unless the old plugin had to stay in it.
std::string endingFunction(const std::string& plugin) {
    const std::string restoring = "if [ -e old ]; then rm -rf " + plugin + " && mv old " + plugin +
                                  R"( || { echo "The old plugin was kept in $t/old" >&2; exit $s; }; )" +
                                  R"(elif [ "$copying" ]; then rm -rf )" + plugin + "; fi";
    return R"(t=; inside=; copying=; ending() { s=$?; trap - EXIT; if [ $s -ne 0 ] && [ "$inside" ]; then )" +
           restoring + R"(; fi; [ -z "$t" ] || rm -rf "$t"; exit $s; }; )";
}

/// Writes what `manifestOf` describes, not yet sorted. Each kind of line gets its letter line by line, so that a name
/// with a line end cannot pass for a line of another kind.
std::string manifestFunction(const std::string& name) {
    const std::string linkLines =
        R"sh(while IFS= read -r l; do printf '%s -> %s\n' "$l" "$(readlink "$l")"; done | sed 's/^/l /')sh";
    return "manifest() { find " + name + " -type d | sed 's/^/d /'; find " + name + " -type l | " + linkLines +
           "; find " + name + " -type f -exec $h {} + | sed 's/^/f /'; find " + name +
           " -type f -perm -100 | sed 's/^/x /'; }; ";
}

std::string checkOfCopy(const std::string& name, const std::string& manifestSha256) {
    return "{ { [ -z \"$(find " + name + " ! -type d ! -type f ! -type l -o -name '*[[:cntrl:]]*')\" ] && " +
           "[ \"$(manifest | sort | $h)\" = " + quoted(manifestSha256 + "  -") + " ]; } || " +
           "{ echo 'The update was changed after it was checked' >&2; false; }; }";
}

} // namespace

std::string copyScript(const std::string& from, const std::string& to) {
    return administratorScript("mkdir -p " + quoted(to) + " && cp -R " + quoted(from + "/") + " " + quoted(to));
}

std::string minimalPluginScript(const std::string& path, const std::string& version) {
    using Field = std::pair<std::string, std::string>;
    const auto versionJson = escapedJson(std::array{Field("version", version)});
    const auto manifestJson = escapedJson(std::array{Field("name", "Zuvo"), Field("version", version)});
    return administratorScript("mkdir -p " + quoted(path) + " && echo " + quoted(versionJson) + " > " +
                               quoted(path + "/version.json") + " && echo " + quoted(manifestJson) + " > " +
                               quoted(path + "/manifest.json"));
}

std::string removalScript(const std::string& path) {
    return administratorScript("rm -rf " + quoted(path));
}

std::string replacementScript(const std::string& pluginFolder, const std::string& extracted) {
    return administratorScript(replacementLine(pluginFolder, extracted));
}

std::string checkedReplacementScript(const std::string& pluginFolder, const std::string& extracted,
                                     const std::string& manifestSha256) {
    const auto plugin = quoted(pluginFolder);
    const auto name = quoted(lastPathComponent(pluginFolder));
    const std::vector<std::string> steps = {
        "t=$(mktemp -d " + quoted(parentOf(pluginFolder) + "/.zuvo-update.XXXXXX") + ")",
        R"(cd "$t")",
        "inside=1",
        "cp -RP " + quoted(extracted + "/" + lastPathComponent(pluginFolder)) + " .",
        checkOfCopy(name, manifestSha256),
        "chmod -R u-s,g-s,u+rwX,go+rX,go-w " + name,
        "{ [ ! -e " + plugin + " ] || mv " + plugin + " old; }",
        "copying=1",
        // From here on all is as it was ever done, within root's folder.
        replacementLine(pluginFolder, "."),
    };
    const std::string line = "LC_ALL=C; export LC_ALL; umask 022; " + hashChoice() + endingFunction(plugin) +
                             manifestFunction(name) + "trap ending EXIT; trap 'exit 1' HUP INT TERM; ";
    return administratorScript(escaped(line + join(steps, " && ")));
}

std::optional<std::string> pathRefusal(const std::string& path) {
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char del = 0x7F;
    const auto breaksOut = [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte == '\'' || byte == '"' || byte == '\\' || byte < firstPrintable || byte == del;
    };
    if (std::none_of(path.begin(), path.end(), breaksOut))
        return std::nullopt;
    return "The path holds a quote: " + harmlessText(path);
}

} // namespace zuvo
