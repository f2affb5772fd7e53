// The model of the profile-setting dialog: the profiles that it offers and what is chosen.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/block.h"
#include "frame/problem.h"
#include "kolink/profile_selection_dialog.h"

namespace ko::front {

constexpr int32_t kProfileSlots = 500;  // of each list, KOLINK_PATH_SIZE bytes a slot

enum class ProfileList { rgb, cmyk };

// What a profile says of itself, or why it cannot be read.
struct ProfileWords {
    std::string description;  // a record's text
    std::optional<Problem> problem;
};

class ProfileSelectionModel {
public:
    using Allocate = Block<char> (*)(uint64_t size) noexcept;

    // Lists the profiles of a folder and finds the given ones among them. What is not there is
    // not set: in this copy of the record. A list that no memory can be had for is empty.
    ProfileSelectionModel(const ProfileSelection& given, std::string_view folder,
                          Allocate allocate = allocateBlock<char>);

    // What a list offers after its first entry, "not set".
    int32_t profileCount(ProfileList list) const noexcept { return offered(list).size(); }
    std::string_view fileName(ProfileList list, int32_t profile) const noexcept;
    // Read from the file when it is first asked for.
    const ProfileWords& wordsOf(ProfileList list, int32_t profile);

    int32_t chosenEntry(ProfileList list) const noexcept { return offered(list).chosen; }
    const ProfileSelection& record() const noexcept { return record_; }

    // Entries that a list does not have change nothing.
    void chooseEntry(ProfileList list, int32_t entry) noexcept;
    void chooseIntent(int32_t intent) noexcept;

    // A file from anywhere, offered from now on, behind the others, and chosen; or why it cannot
    // be. Files that were added before stand in the list of the next dialog as well.
    std::optional<Problem> addProfile(ProfileList list, const std::string& path);

private:
    struct Offer {
        Block<char> slots;
        int32_t count = 0;               // of the folder
        std::vector<std::string> added;  // behind them
        std::vector<std::optional<ProfileWords>> words;
        int32_t chosen = 0;
        int32_t size() const noexcept { return count + static_cast<int32_t>(added.size()); }
        const char* path(int32_t profile) const noexcept {
            if (profile >= count) return added[static_cast<size_t>(profile - count)].c_str();
            return slots.get() + static_cast<size_t>(profile) * KOLINK_PATH_SIZE;
        }
    };
    const Offer& offered(ProfileList list) const noexcept {
        return list == ProfileList::rgb ? rgb_ : cmyk_;
    }
    static Offer listed(std::string_view folder, ProfileList list, Allocate allocate);
    static void find(Offer& offer, char (&path)[KOLINK_PATH_SIZE]) noexcept;

    ProfileSelection record_;
    Offer rgb_, cmyk_;
};

}  // namespace ko::front
