#include "front/dialog/profile_selection.h"

#include <algorithm>
#include <string>

#include "frame/boundary.h"
#include "frame/path.h"
#include "frame/platform.h"
#include "frame/text.h"
#include "front/front.h"

namespace ko::front {

ProfileSelectionModel::ProfileSelectionModel(const ProfileSelection& given,
                                             std::string_view folder, Allocate allocate)
    : record_(given), rgb_(listed(folder, "RGB ", allocate)),
      cmyk_(listed(folder, "CMYK", allocate)) {
    find(rgb_, record_.rgbPath);
    find(cmyk_, record_.cmykPath);
    if (record_.intent < 0 || record_.intent > 3) record_.intent = 0;
}

ProfileSelectionModel::Offer ProfileSelectionModel::listed(std::string_view folder,
                                                           const char* colourSpace,
                                                           Allocate allocate) {
    Offer offer;
    offer.slots = allocate(uint64_t{kProfileSlots} * KOLINK_PATH_SIZE);
    if (!offer.slots) return offer;
    for (const char* pattern : {"*.icc", "*.icm"}) {
        if (offer.count == kProfileSlots) break;  // no slot is left for the pattern either
        // The files that come next follow those that are there.
        char* const next = offer.slots.get() + static_cast<size_t>(offer.count) * KOLINK_PATH_SIZE;
        offer.count += atBoundary<int32_t>(0, [&] {
            if (!copyPath({next, KOLINK_PATH_SIZE}, joinPath(folder, pattern).c_str())) return 0;
            return loadIccFileList(next, kProfileSlots - offer.count, colourSpace);
        });
    }
    return offer;
}

void ProfileSelectionModel::find(Offer& offer, char (&path)[KOLINK_PATH_SIZE]) noexcept {
    path[KOLINK_PATH_SIZE - 1] = '\0';  // the record is the host's
    for (int32_t profile = 0; profile < offer.count && path[0]; ++profile)
        if (platform::samePath(offer.path(profile), path)) {
            offer.chosen = profile + 1;
            break;
        }
    if (offer.chosen == 0) std::fill(std::begin(path), std::end(path), '\0');
}

std::string_view ProfileSelectionModel::fileName(ProfileList list, int32_t profile) const noexcept {
    const Offer& offer = offered(list);
    if (profile < 0 || profile >= offer.count) return {};
    return fileNameOf(offer.path(profile));
}

void ProfileSelectionModel::chooseEntry(ProfileList list, int32_t entry) noexcept {
    Offer& offer = list == ProfileList::rgb ? rgb_ : cmyk_;
    if (entry < 0 || entry > offer.count) return;
    offer.chosen = entry;
    auto& path = list == ProfileList::rgb ? record_.rgbPath : record_.cmykPath;
    (void)copyPath(path, entry == 0 ? "" : offer.path(entry - 1));
}

void ProfileSelectionModel::chooseIntent(int32_t intent) noexcept {
    if (intent >= 0 && intent <= 3) record_.intent = intent;
}

}  // namespace ko::front
