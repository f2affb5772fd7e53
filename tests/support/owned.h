// Owners of what the exported functions make, released with the test.
#pragma once

#include <memory>

#include "kolink.h"

namespace ko::test {

template <auto kRelease>
struct Releasing {
    template <class Record>
    void operator()(Record* record) const {
        kRelease(record);
    }
};
template <class Record, auto kRelease>
using Owned = std::unique_ptr<Record, Releasing<kRelease>>;

using OwnedCmykProfile = Owned<CmykProfile, jKoCmykReleaseProfile>;
using OwnedCmykLut = Owned<CmykLut, jKoCmykReleaseCmykLut>;
using OwnedRgbLut = Owned<RgbLut, jKoRgbReleaseRgbLut>;
using OwnedLink = Owned<LinkProfile, jKoLinkReleaseProfile>;
using OwnedDevice = Owned<DeviceProfile, jKoDevsReleaseProfile>;
using OwnedIccProfile = Owned<IccProfile, jIccRelease>;
using OwnedCalibSet = Owned<CalibCurveSet, jKoCalibReleaseCurve>;
using OwnedToneCurve = Owned<ToneCurve, jKoToneReleaseToneCurve>;

inline OwnedCmykLut newCmykLut() { return OwnedCmykLut(jKoCmykCreateCmykLut()); }
inline OwnedRgbLut newRgbLut() { return OwnedRgbLut(jKoRgbCreateRgbLut()); }

}  // namespace ko::test
