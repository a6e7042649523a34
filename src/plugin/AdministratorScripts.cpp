#include "plugin/AdministratorScripts.h"

#include "base/Paths.h"
#include "platform/ForeignWords.h"

#include <algorithm>
#include <array>

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
    return administratorScript("rm -rf " + quoted(pluginFolder) + " && cp -R " +
                               quoted(extracted + "/" + lastPathComponent(pluginFolder)) + " " +
                               quoted(parentOf(pluginFolder)));
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
