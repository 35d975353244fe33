"""A sheet of all looks on a photograph, in cells as notebooks have them.

    sheet.py PHOTOGRAPH SHEET
"""

# %% The photograph, small.
import sys

from PIL import Image, ImageDraw, ImageOps

import lumora

photograph = ImageOps.fit(Image.open(sys.argv[1]).convert("RGB"), (240, 160))

# %% What looks are there?
for look in lumora.looks.values():
    print(f"{look.number:2} {look.name:16} {look.summary}")

# %% One after the other. Colour fix wants to know which colour stays.
columns, caption = 5, 20
sheet = Image.new("RGB", (columns * 240, -(-len(lumora.looks) // columns) * (160 + caption)))
draw = ImageDraw.Draw(sheet)
for place, look in enumerate(lumora.looks.values()):
    settings = {"pick": (120, 80)} if "pick" in look.settings else {}
    x, y = place % columns * 240, place // columns * (160 + caption)
    sheet.paste(lumora.apply(photograph, look, **settings), (x, y))
    draw.text((x + 6, y + 164), look.name, "white")

# %%
sheet.save(sys.argv[2])
