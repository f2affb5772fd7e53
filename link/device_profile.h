// Device profiles: a printer's measurements, written as an ICC profile.
#pragma once

#include "frame/block.h"
#include "kolink/device_profile.h"

namespace ko::link {

[[nodiscard]] Block<DeviceProfile> createDeviceProfile() noexcept;
void initDeviceProfile(DeviceProfile& profile) noexcept;
// jKoDevsSaveProfile, with its results.
int32_t saveDeviceProfile(DeviceProfile& profile, const char* path);

}  // namespace ko::link
