// Device profiles: a printer's measurements, written as an ICC profile.
#pragma once

#include "frame/block.h"
#include "frame/path.h"
#include "kolink/device_profile.h"

namespace ko::link {

[[nodiscard]] Block<DeviceProfile> createDeviceProfile() noexcept;
void initDeviceProfile(DeviceProfile& profile) noexcept;
// True without memory for the object as well.
bool saveDeviceProfile(DeviceProfile& profile, const Path& path);

}  // namespace ko::link
