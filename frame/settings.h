// Settings files: named directories of keys and text values, in the grammar that
// docs/formats/settings.md describes. The language tables are texts of the same form.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ko {

// Names of directories and keys are compared without regard to ASCII case.
struct NameLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept;
};

// The tree that a settings text describes. Directories and keys keep the order in which they came
// first.
class SettingsTree {
public:
    struct Key {
        std::string name;
        std::string value;
    };
    struct Directory {
        std::string name;  // empty for the root
        std::vector<Key> keys;
        std::vector<Directory> directories;

        const Key* findKey(std::string_view name) const noexcept;
        const Directory* find(std::string_view name) const noexcept;

    private:
        friend class SettingsTree;
        std::map<std::string, size_t, NameLess> keyIndex_, directoryIndex_;
    };

    // Beyond these a text is not read further, deeper directories are left out.
    static constexpr size_t kMaxDepth = 16;
    static constexpr size_t kMaxEntries = 65536;  // directories and keys together
    static constexpr uint64_t kMaxFileSize = uint64_t{4} << 20;

    // Any text gives a tree: lines that cannot be read are skipped.
    static SettingsTree parse(std::string_view text);
    std::string text() const;

    const Directory& root() const noexcept { return root_; }
    const Directory* find(std::string_view path) const noexcept;  // a path such as "\CALIB\A"
    // False for a name that the grammar cannot hold, and beyond the limits above. Line ends and
    // NULs in a value become blanks.
    [[nodiscard]] bool set(std::string_view path, std::string_view key, std::string_view value);

private:
    Directory* enter(Directory& parent, std::string_view name);
    bool put(Directory& directory, std::string_view name, std::string_view value);

    Directory root_;
    size_t entries_ = 0;
};

// A settings file being read or made: the tree, the selected directory, and where it is saved.
class SettingsFile {
public:
    // The file as it is; empty when it cannot be read or is larger than kMaxFileSize.
    static std::optional<SettingsFile> open(const char* path);
    // The same from what was read of the file.
    static std::optional<SettingsFile> fromText(const char* path, std::string_view text);
    // Without keys, whatever the file holds; empty for a path that no file can have. The file
    // itself changes in save() alone.
    static std::optional<SettingsFile> startAfresh(const char* path);

    void select(std::string_view directory) { directory_ = directory; }
    const std::string* value(std::string_view key) const noexcept;
    [[nodiscard]] bool set(std::string_view key, std::string_view value) {
        return tree_.set(directory_, key, value);
    }
    // Writes the file beside its name and then puts it in place: after a failure the old file is
    // there as it was.
    [[nodiscard]] bool save() const noexcept;

private:
    explicit SettingsFile(const char* path) : path_(path) {}

    std::string path_;
    std::string directory_;
    SettingsTree tree_;
};

}  // namespace ko
