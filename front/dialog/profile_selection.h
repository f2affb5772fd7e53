// The model of the profile-setting dialog: the profiles that it offers and what is chosen.
#pragma once

#include <cstdint>
#include <string_view>

#include "frame/block.h"
#include "kolink/profile_selection_dialog.h"

namespace ko::front {

constexpr int32_t kProfileSlots = 500;  // of each list, KOLINK_PATH_SIZE bytes a slot

enum class ProfileList { rgb, cmyk };

class ProfileSelectionModel {
public:
    using Allocate = Block<char> (*)(uint64_t size) noexcept;

    // Lists the profiles of a folder and finds the given ones among them. What is not there is
    // not set: in this copy of the record. A list that no memory can be had for is empty.
    ProfileSelectionModel(const ProfileSelection& given, std::string_view folder,
                          Allocate allocate = allocateBlock<char>);

    // What a list offers after its first entry, "not set".
    int32_t profileCount(ProfileList list) const noexcept { return offered(list).count; }
    std::string_view fileName(ProfileList list, int32_t profile) const noexcept;

    int32_t chosenEntry(ProfileList list) const noexcept { return offered(list).chosen; }
    const ProfileSelection& record() const noexcept { return record_; }

    // Entries that a list does not have change nothing.
    void chooseEntry(ProfileList list, int32_t entry) noexcept;
    void chooseIntent(int32_t intent) noexcept;

private:
    struct Offer {
        Block<char> slots;
        int32_t count = 0;
        int32_t chosen = 0;
        const char* path(int32_t profile) const noexcept {
            return slots.get() + static_cast<size_t>(profile) * KOLINK_PATH_SIZE;
        }
    };
    const Offer& offered(ProfileList list) const noexcept {
        return list == ProfileList::rgb ? rgb_ : cmyk_;
    }
    static Offer listed(std::string_view folder, const char* colourSpace, Allocate allocate);
    static void find(Offer& offer, char (&path)[KOLINK_PATH_SIZE]) noexcept;

    ProfileSelection record_;
    Offer rgb_, cmyk_;
};

}  // namespace ko::front
