#include "front/dialog/profile_selection.h"

#include <algorithm>
#include <string>
#include <utility>

#include "frame/boundary.h"
#include "frame/bytes.h"
#include "frame/path.h"
#include "frame/platform.h"
#include "frame/text.h"
#include "front/front.h"
#include "icc/icc.h"
#include "icc/words.h"
#include "resources/texts.h"

namespace ko::front {
namespace {

constexpr size_t kMostAdded = 20;  // of each list; the oldest go

// Files from outside of the folder, while the library is loaded. A host's record that names one
// is found again.
std::vector<std::string>& addedBefore(ProfileList list) {
    static std::vector<std::string> rgb, cmyk;
    return list == ProfileList::rgb ? rgb : cmyk;
}

std::optional<Problem> whyUnusable(ProfileList list, const std::string& path) {
    if (auto problem = whyUnreadable(path.c_str())) return problem;
    const icc::ProfilePtr profile = icc::loadHeader(path.c_str());
    if (!profile || profile->header.magic != fourcc("acsp")) return Problem{texts::kNoIccProfile};
    const uint32_t wanted = list == ProfileList::rgb ? fourcc("RGB ") : fourcc("CMYK");
    if (profile->header.colourSpace == wanted) return std::nullopt;
    return Problem{list == ProfileList::rgb ? texts::kNoRgbProfile : texts::kWrongSpace,
                   {icc::signatureText(profile->header.colourSpace)}};
}

}  // namespace

ProfileSelectionModel::ProfileSelectionModel(const ProfileSelection& given,
                                             std::string_view folder, Allocate allocate)
    : record_(given), rgb_(listed(folder, ProfileList::rgb, allocate)),
      cmyk_(listed(folder, ProfileList::cmyk, allocate)) {
    find(rgb_, record_.rgbPath);
    find(cmyk_, record_.cmykPath);
    if (record_.intent < 0 || record_.intent > 3) record_.intent = 0;
}

ProfileSelectionModel::Offer ProfileSelectionModel::listed(std::string_view folder,
                                                           ProfileList list, Allocate allocate) {
    const char* const colourSpace = list == ProfileList::rgb ? "RGB " : "CMYK";
    Offer offer;
    for (const std::string& path : addedBefore(list))
        if (!whyUnusable(list, path)) offer.added.push_back(path);
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
    for (int32_t profile = 0; profile < offer.size() && path[0]; ++profile)
        if (platform::samePath(offer.path(profile), path)) {
            offer.chosen = profile + 1;
            break;
        }
    if (offer.chosen == 0) std::fill(std::begin(path), std::end(path), '\0');
}

std::string_view ProfileSelectionModel::fileName(ProfileList list, int32_t profile) const noexcept {
    const Offer& offer = offered(list);
    if (profile < 0 || profile >= offer.size()) return {};
    return fileNameOf(offer.path(profile));
}

void ProfileSelectionModel::chooseEntry(ProfileList list, int32_t entry) noexcept {
    Offer& offer = list == ProfileList::rgb ? rgb_ : cmyk_;
    if (entry < 0 || entry > offer.size()) return;
    offer.chosen = entry;
    auto& path = list == ProfileList::rgb ? record_.rgbPath : record_.cmykPath;
    (void)copyPath(path, entry == 0 ? "" : offer.path(entry - 1));
}

const ProfileWords& ProfileSelectionModel::wordsOf(ProfileList list, int32_t profile) {
    Offer& offer = list == ProfileList::rgb ? rgb_ : cmyk_;
    offer.words.resize(static_cast<size_t>(offer.size()));
    auto& known = offer.words.at(static_cast<size_t>(profile));
    if (known) return *known;
    const std::string path = offer.path(profile);
    ProfileWords words;
    words.problem = whyUnusable(list, path);
    if (!words.problem) {
        if (const icc::ProfilePtr opened = icc::loadHeader(path.c_str()))
            words.description = icc::descriptionLine(*opened);
    }
    return known.emplace(std::move(words));
}

std::optional<Problem> ProfileSelectionModel::addProfile(ProfileList list,
                                                         const std::string& path) {
    if (path.size() >= KOLINK_PATH_SIZE) return Problem{texts::kPathTooLong};
    if (auto problem = whyUnusable(list, path)) return problem;
    Offer& offer = list == ProfileList::rgb ? rgb_ : cmyk_;
    int32_t at = 0;
    while (at < offer.size() && !platform::samePath(offer.path(at), path.c_str())) ++at;
    if (at == offer.size()) {
        offer.added.push_back(path);
        auto& before = addedBefore(list);
        if (before.size() == kMostAdded) before.erase(before.begin());
        before.push_back(path);
    }
    chooseEntry(list, at + 1);
    return std::nullopt;
}

void ProfileSelectionModel::chooseIntent(int32_t intent) noexcept {
    if (intent >= 0 && intent <= 3) record_.intent = intent;
}

}  // namespace ko::front
