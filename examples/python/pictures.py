# %% [markdown]
# # A device link, looked at
#
# Makes a link between two press profiles and shows what it does with ramps of ink, with a picture,
# and how a calibration set bends its inks. Runs as a script, or cell by cell in an editor that
# knows `# %%`:
#
#     python3 pictures.py PRESS.icc PRINTER.icc [FOLDER]

# %%
from __future__ import annotations

import sys
from pathlib import Path

import matplotlib.pyplot as plt  # type: ignore[import]
import numpy as np
import numpy.typing as npt

import kolink

press, printer = sys.argv[1], sys.argv[2]
folder = Path(sys.argv[3] if len(sys.argv) > 3 else "pictures")
folder.mkdir(parents=True, exist_ok=True)
link = kolink.Link.make(press, printer, preserve="secondaries")
print(link, link.info)

# %% [markdown]
# ## Ramps
# Each ink alone at all 256 levels. `preserve="secondaries"` keeps every other ink at nothing.

# %%
inks = "CMYK"
shades = ["tab:cyan", "tab:pink", "gold", "black"]
ramps = np.zeros((4, 256, 4), np.uint8)
for ink in range(4):
    ramps[ink, :, ink] = np.arange(256)
made = link(ramps)
figure, axes = plt.subplots(1, 4, figsize=(14, 3.4), sharey=True)
for ink, axis in enumerate(axes):
    for other in range(4):
        axis.plot(made[ink, :, other], color=shades[other], label=inks[other])
    axis.set_title(f"{inks[ink]} alone")
axes[0].legend()
figure.savefig(folder / "ramps.png")
for ink in range(3):
    others = [other for other in range(4) if other != ink]
    assert made[ink][:, others].max() == 0, "an ink did not stay alone"

# %% [markdown]
# ## A picture
# A colour wheel over grey, in 16 bits, in one array; as the printer's profile shows it. `out=` and
# `threads=` save memory and time with large ones.

# %%
height, width = 240, 360
x, y = np.meshgrid(np.linspace(0, 1, width), np.linspace(0, 1, height))
turn = 2 * np.pi * x
picture = np.stack([(1 + np.cos(turn)) / 2 * y, (1 + np.cos(turn - 2.1)) / 2 * y,
                    (1 + np.cos(turn + 2.1)) / 2 * y, np.clip(y - 0.6, 0, 1)], axis=-1)
levels = (picture * 65535).astype(np.uint16)
printed = np.empty_like(levels)
link(levels, out=printed, threads=2)


def shown(profile: kolink.Profile, inks_of: npt.NDArray[np.uint16]) -> npt.NDArray[np.float64]:
    """Colours of a screen for inks, through L*a*b*."""
    lab = kolink.Transform(profile, None)((inks_of / np.float32(65535)).astype(np.float32)).astype(float)
    fy = (lab[..., 0] + 16) / 116
    f = np.stack([fy + lab[..., 1] / 500, fy, fy - lab[..., 2] / 200], axis=-1)
    xyz = np.where(f > 0.2069, f**3, (f - 16 / 116) / 7.787) * [0.9642, 1, 0.8249]
    light = xyz @ np.array([[3.1339, -1.6169, -0.4906], [-0.9788, 1.9161, 0.0335],
                            [0.0719, -0.2290, 1.4052]]).T
    light = np.clip(light, 0, 1)
    made: npt.NDArray[np.float64] = np.where(light > 0.0031308, 1.055 * light ** (1 / 2.4) - 0.055, 12.92 * light)
    return made


figure, axes = plt.subplots(1, 3, figsize=(14, 3.6))
axes[0].imshow(shown(kolink.Profile.open(press), levels))
axes[0].set_title("on the press")
axes[1].imshow(shown(kolink.Profile.open(printer), printed))
axes[1].set_title("the printer's proof of it")
ink_map = axes[2].imshow(printed.astype(float).sum(-1) / 655.35)
axes[2].set_title("total ink, percent")
figure.colorbar(ink_map)
figure.savefig(folder / "picture.png")

# %% [markdown]
# ## A calibration set

# %%
curves = kolink.CalibrationSet(4)
figure, axis = plt.subplots(figsize=(5, 4))
for channel, name, shade, dot in zip(curves, inks, shades, (112, 120, 116, 108)):
    channel.name = name
    channel.set(128, dot)
    axis.plot(channel(np.arange(256)), color=shade, label=name)
    axis.plot(*channel.tones.T, "o", color=shade)
axis.legend()
figure.savefig(folder / "tones.png")
curves.save(folder / "printer.clb")
