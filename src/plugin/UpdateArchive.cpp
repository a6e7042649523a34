#include "plugin/UpdateArchive.h"

#include "base/Text.h"
#include "model/PluginVersion.h"
#include "platform/FileSystem.h"
#include "platform/ForeignWords.h"
#include "plugin/ZipDirectory.h"

#include <QString>
#include <array>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <vector>
#include <zip.h>

namespace zuvo {

namespace {

constexpr const char* notWhole = "The update is not a whole zip archive";

/// Leaves the inspection; `what()` is the refusal.
class Refused final : public std::runtime_error {
public:
    explicit Refused(const std::string& words) : std::runtime_error(words) {}
    Refused(const std::string& words, const std::string& name) : Refused(words + ": " + harmlessText(name)) {}
};

struct CloseArchive {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseEntry {
    void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};
using OpenArchive = std::unique_ptr<zip_t, CloseArchive>;
using OpenEntry = std::unique_ptr<zip_file_t, CloseEntry>;

enum class Kind { file, folder, link };

struct Entry {
    zip_uint64_t index = 0;
    std::string path; ///< as in the archive, without the "/" at a folder's end
    Kind kind = Kind::file;
    std::uint64_t bytes = 0; ///< as the directory says
};

OpenArchive opened(const std::string& path) {
    const auto size = fileSize(path);
    if (!size)
        throw Refused(notWhole);
    if (*size > updateLimits.packedBytes)
        throw Refused("The update is larger than 64 MB");
    const auto directory = readZipDirectoryEnd(path);
    int error = 0;
    // Not by ZIP_CHECKCONS: it takes archives of other tools for inconsistent that state a size in one header alone.
    // What it would find is found entry by entry.
    OpenArchive archive(zip_open(path.c_str(), ZIP_RDONLY, &error));
    if (!archive || !directory || *directory != static_cast<std::uint64_t>(zip_get_num_entries(archive.get(), 0)))
        throw Refused(notWhole);
    if (*directory > updateLimits.entries)
        throw Refused("The update has more than 10,000 entries");
    return archive;
}

/// Checks a path of the archive, a "/" at its end included.
void checkName(const std::string& name) {
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char del = 0x7F;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < firstPrintable || byte == del || byte == '\\')
            throw Refused("The update holds a name that cannot be used", name);
    }
    if (name.empty() || !isValidUtf8(name) || name.size() > updateLimits.pathBytes)
        throw Refused("The update holds a name that cannot be used", firstCharacters(name, 80));
    if (name.front() == '/')
        throw Refused("The update holds a path that leads out of it", name);
    auto steps = split(name, '/');
    if (steps.back().empty())
        steps.pop_back();
    for (const auto step : steps) {
        if (step == "..")
            throw Refused("The update holds a path that leads out of it", name);
        if (step.empty() || step == ".")
            throw Refused("The update holds a name that cannot be used", name);
    }
    if (steps.size() > updateLimits.folderDepth)
        throw Refused("The update's folders are nested too deeply", firstCharacters(name, 80));
}

/// What the entry becomes when it is unpacked, by its name and its Unix mode. The mode is looked at whatever system the
/// entry claims to come from, since unzip does so too.
Kind kindOf(zip_t* archive, zip_uint64_t index, const std::string& name) {
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) != 0)
        throw Refused(notWhole);
    constexpr unsigned modeShift = 16;
    const auto mode = static_cast<mode_t>(attributes >> modeShift);
    const auto type = mode & static_cast<mode_t>(S_IFMT);
    const bool isFolder = name.ends_with('/');
    const bool isKnown = type == 0 || (isFolder ? type == S_IFDIR : type == S_IFREG || type == S_IFLNK);
    if (!isKnown)
        throw Refused("The update holds a special file", name);
    if ((mode & static_cast<mode_t>(S_ISUID | S_ISGID)) != 0)
        throw Refused("The update holds a file with set-id rights", name);
    const bool hasUnixMode = system == ZIP_OPSYS_UNIX || system == ZIP_OPSYS_OS_X;
    const auto needed = static_cast<mode_t>(isFolder ? S_IRWXU : S_IRUSR);
    if (hasUnixMode && type != S_IFLNK && (mode & needed) != needed)
        throw Refused("The update holds an entry that its owner cannot read", name);
    if (isFolder)
        return Kind::folder;
    return type == S_IFLNK ? Kind::link : Kind::file;
}

Entry entryAt(zip_t* archive, zip_uint64_t index) {
    zip_stat_t status;
    zip_stat_init(&status);
    const char* name = zip_get_name(archive, index, ZIP_FL_ENC_RAW);
    if (name == nullptr || zip_stat_index(archive, index, ZIP_FL_ENC_RAW, &status) != 0)
        throw Refused(notWhole);
    Entry entry;
    entry.index = index;
    entry.path = name;
    checkName(entry.path);
    if ((status.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && status.encryption_method != ZIP_EM_NONE)
        throw Refused("The update holds an encrypted entry", entry.path);
    if (status.comp_method != ZIP_CM_STORE && status.comp_method != ZIP_CM_DEFLATE)
        throw Refused("The update holds an entry that cannot be unpacked", entry.path);
    entry.kind = kindOf(archive, index, entry.path);
    entry.bytes = status.size;
    if (entry.kind == Kind::folder) {
        if (entry.bytes != 0)
            throw Refused("The update holds an entry that cannot be unpacked", entry.path);
        entry.path.pop_back();
    }
    return entry;
}

/// How a disk that regards neither case nor Unicode form sees a path.
std::string folded(const std::string& path) {
    return QString::fromStdString(path).normalized(QString::NormalizationForm_C).toCaseFolded().toStdString();
}

/// Finds entries that would come to be in each other's place.
class Places {
public:
    void add(const Entry& entry) {
        const auto place = folded(entry.path);
        const bool isNew = m_places.insert(place).second;
        // The way to it must consist of folders, each spelled in one way.
        for (auto end = entry.path.find('/'); end != std::string::npos; end = entry.path.find('/', end + 1))
            addFolder(entry.path.substr(0, end), entry.path);
        if (!isNew || (entry.kind != Kind::folder && m_folders.contains(place)))
            throw Refused("The update holds one name twice", entry.path);
        if (entry.kind == Kind::folder)
            addFolder(entry.path, entry.path);
        else
            m_files.insert(place);
    }

private:
    void addFolder(const std::string& folder, const std::string& path) {
        const auto place = folded(folder);
        const auto known = m_folders.emplace(place, folder).first;
        if (known->second != folder || m_files.contains(place))
            throw Refused("The update holds one name twice", path);
    }

    std::set<std::string> m_places;
    std::set<std::string> m_files;                ///< links too
    std::map<std::string, std::string> m_folders; ///< their spelling by their place
};

/// Decompresses the entry and compares its checksum. `kept` are its first bytes, as many as fit in there.
void readEntry(zip_t* archive, const Entry& entry, std::string& kept, std::size_t keptLimit) {
    const OpenEntry file(zip_fopen_index(archive, entry.index, 0));
    if (!file)
        throw Refused("The update is damaged", entry.path);
    constexpr std::size_t chunkBytes = 65536;
    std::vector<char> chunk(chunkBytes);
    std::uint64_t total = 0;
    while (true) {
        const auto count = zip_fread(file.get(), chunk.data(), chunk.size());
        if (count < 0)
            throw Refused("The update is damaged", entry.path);
        if (count == 0)
            break;
        total += static_cast<std::uint64_t>(count);
        if (total > entry.bytes)
            throw Refused("The update is damaged", entry.path);
        const auto room = keptLimit - std::min(keptLimit, kept.size());
        kept.append(chunk.data(), std::min(room, static_cast<std::size_t>(count)));
    }
    if (total != entry.bytes)
        throw Refused("The update is damaged", entry.path);
}

std::vector<Entry> entriesOf(zip_t* archive) {
    std::vector<Entry> entries;
    Places places;
    std::uint64_t bytes = 0;
    const auto count = static_cast<zip_uint64_t>(zip_get_num_entries(archive, 0));
    for (zip_uint64_t index = 0; index < count; ++index) {
        entries.push_back(entryAt(archive, index));
        places.add(entries.back());
        bytes += std::min(entries.back().bytes, updateLimits.unpackedBytes + 1);
        if (bytes > updateLimits.unpackedBytes)
            throw Refused("The update is larger than 256 MB when it is unpacked");
    }
    return entries;
}

const Entry& versionFileIn(const std::vector<Entry>& entries, const std::string& path) {
    for (const auto& entry : entries) {
        if (entry.path == path && entry.kind == Kind::file)
            return entry;
    }
    throw Refused("The update lacks the file " + path);
}

UpdateInspection inspected(const std::string& path, const std::string& pluginFolder) {
    const auto archive = opened(path);
    const auto entries = entriesOf(archive.get());
    const auto& versionFile = versionFileIn(entries, pluginFolder + "/version.json");
    UpdateInspection inspection;
    for (const auto& entry : entries) {
        std::string text;
        const bool isVersion = &entry == &versionFile;
        readEntry(archive.get(), entry, text, isVersion ? updateLimits.versionFileBytes + 1 : 0);
        if (isVersion && (text.size() > updateLimits.versionFileBytes || !isValidUtf8(text) ||
                          !decodeRecordText<PluginVersionFile>(text).value))
            throw Refused("The update's version.json cannot be read");
        if (entry.kind != Kind::folder)
            inspection.files.emplace(entry.path, entry.bytes);
    }
    return inspection;
}

} // namespace

UpdateInspection inspectUpdate(const std::string& archive, const std::string& pluginFolder) {
    try {
        return inspected(archive, pluginFolder);
    } catch (const Refused& refused) {
        UpdateInspection inspection;
        inspection.refusal = refused.what();
        return inspection;
    }
}

} // namespace zuvo
